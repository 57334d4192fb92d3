// The subcommands of kttool. Each takes its arguments (behind its name) and
// the streams it writes to, and answers the process's exit status.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kttool {

// Exit statuses.
constexpr int kSuccess = 0;
constexpr int kFindings = 1;  // check: something was found; render: a text overflows
constexpr int kFailure = 2;   // bad command line or input

using Arguments = std::vector<std::string>;

int RunExtract(const Arguments& args, std::ostream& out, std::ostream& err);
int RunCheck(const Arguments& args, std::ostream& out, std::ostream& err);
int RunPseudo(const Arguments& args, std::ostream& out, std::ostream& err);
int RunParams(const Arguments& args, std::ostream& out, std::ostream& err);
#if defined(_WIN32)
int RunRender(const Arguments& args, std::ostream& out, std::ostream& err);
int RunFit(const Arguments& args, std::ostream& out, std::ostream& err);
int RunRun(const Arguments& args, std::ostream& out, std::ostream& err);
int RunStorage(const Arguments& args, std::ostream& out, std::ostream& err);
#endif

// The program: the subcommand's name, then its arguments.
int RunTool(const Arguments& args, std::ostream& out, std::ostream& err);

}  // namespace kttool
