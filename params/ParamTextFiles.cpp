// The text form of a tree in a string and in a file.
#include <memory>
#include <string>

#include "files/MemFile.h"
#include "files/OpenOrThrow.h"
#include "kticore/params/ParamTools.h"
#include "params/Held.h"
#include "params/InputBuffer.h"
#include "params/ParamText.h"

namespace {

using kt::params::Held;

// The scratch file of the string forms: a file in memory that grows in steps
// of this many bytes and whose length is always whole steps, the text being
// followed by zero bytes, which the reader drops. Its last line therefore
// keeps the blanks at its end.
constexpr DWORD kScratchStep = 1024;

// Bytes of the buffer of one logical line of the one-line form, terminator
// included.
constexpr int kStringLineSize = 65536;

IXFile* NewScratchFile() { return new kt::CMemFile(kScratchStep); }

}  // namespace

int Param_Param2String(IParam* param, CXString& text) {
    if (param == nullptr)
        return 0;
    Held<IXFile> scratch(NewScratchFile());
    ParamText_Write(param, scratch.get(), nullptr);
    scratch->Seek(0, 0);

    const kt::params::TextScan scan;
    const auto input = std::make_unique<kt::params::InputArea>();
    const auto line = std::make_unique<char[]>(kStringLineSize);
    kt::params::CInputBuffer lines(scratch.get(), *input, scan);
    std::string pieces;
    for (int length; (length = lines.ReadLine(line.get(), kStringLineSize - 1)) != 0;)
        pieces.append(line.get(), static_cast<size_t>(length)).append("|");
    text = pieces.c_str();
    return 1;
}

int Param_String2Param(CXString& text, IParam* param) {
    if (param == nullptr)
        return 0;
    Held<IXFile> scratch(NewScratchFile());
    scratch->Write(static_cast<const char*>(text), text.GetLength());
    scratch->Seek(0, 0);
    return ParamText_Read(scratch.get(), param);
}

int Param_Param2IniFile(IParam* param, const KTWCHAR* path) {
    Held<IXOutFile> out(kt::OpenOutOrThrow(path, FIO_WRITE));
    ParamText_Write(param, out.get(), nullptr);
    out->Commit();
    return 1;
}

int Param_IniFile2Param(const KTWCHAR* path, IParam* param) {
    Held<IXFile> in(kt::OpenOrThrow(path, 0));
    return ParamText_Read(in.get(), param);
}
