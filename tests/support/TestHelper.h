// The tests' second process (tests/helpers/TestHelper.cpp), found beside the
// test executable.
#pragma once

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "kticore/files/FileUtilities.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WideText.h"

namespace kt::test {

inline std::string Narrow(const WideString& wide) {
    return std::string(wide.begin(), wide.end());  // the tests' names are ASCII
}

inline int RunTestHelper(const std::string& what, const WideString& name,
                         const WideString& second = WideString()) {
    std::vector<std::string> arguments = {what, Narrow(name)};
    if (!second.empty())
        arguments.push_back(Narrow(second));
    ChildProcess helper(KT_TEST_HELPER, arguments);
    return helper.Started() ? helper.Wait() : -1;
}

// Whether a writer reported its n-th commit, by the file `marker(n)`,
// within a minute.
template <class Marker>
bool WaitForCommit(const Marker& marker, unsigned n) {
    for (int poll = 0; poll < 60000 && !Fio_IsFileExist(marker(n).c_str()); ++poll)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return Fio_IsFileExist(marker(n).c_str()) != 0;
}

// Starts the helper with `arguments`, a writer that commits over and over
// and reports commit n by the file `marker(n)`, and kills it at a random
// moment of its third commit: the first two tell how long one takes at the
// machine's present load. The number of commits it reported by then; 0 when
// it never got going.
template <class Marker>
unsigned KillDuringACommit(const std::vector<std::string>& arguments, const Marker& marker, std::mt19937& random) {
    {
        ChildProcess writer(KT_TEST_HELPER, arguments);
        if (!writer.Started() || !WaitForCommit(marker, 1))
            return 0;
        const auto first = std::chrono::steady_clock::now();
        if (!WaitForCommit(marker, 2))
            return 0;
        const auto period = std::chrono::steady_clock::now() - first;
        std::uniform_int_distribution<long long> moment(0, period.count());
        std::this_thread::sleep_for(std::chrono::steady_clock::duration(moment(random)));
        writer.Kill();
    }
    unsigned commits = 2;
    while (Fio_IsFileExist(marker(commits + 1).c_str()))
        ++commits;
    return commits;
}

// Another process that holds a non-exclusive lock on a file while it lives.
class LockInAnotherProcess {
public:
    explicit LockInAnotherProcess(const WideString& name)
        : marker(name + KTW(".held")), helper(KT_TEST_HELPER, {"hold", Narrow(name), "60000"}) {
        for (int i = 0; i < 2000 && !Fio_IsFileExist(marker.c_str()); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        held = Fio_IsFileExist(marker.c_str()) != 0;
    }
    ~LockInAnotherProcess() {
        helper.Kill();
        Fio_DeleteFile(marker.c_str());
    }
    bool held = false;

private:
    WideString marker;
    ChildProcess helper;
};

}  // namespace kt::test
