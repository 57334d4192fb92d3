#include <string>

#include "kticore/core/Exception.h"
#include "params/InputBuffer.h"
#include "params/Held.h"
#include "params/MarkedValue.h"
#include "params/ParamText.h"

namespace {

using kt::params::Held;

void Put(IXFile* out, const std::string& piece) { out->Write(piece.data(), static_cast<DWORD>(piece.size())); }

// The marked text of a value as the text form writes it: wide text goes as
// narrow text under the marker of text.
bool AppendEntryValue(std::string& entry, const tagKTVARIANT& value) {
    if (value.vt != KTVT_WSTR)
        return kt::params::AppendMarkedValue(entry, value);
    entry += 's';
    entry += static_cast<const char*>(CXString(value.pwszVal));
    return true;
}

void WriteValues(IParam* param, IXFile* out, std::string& entry) {
    Held<CTEnum<const char*>> names(param->EnumValues());
    if (!names)
        return;
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr)) {
        CKTVariant value;
        if (!param->GetValue(name, &value))
            continue;
        entry.assign("\t| ").append(name).append("=");
        if (!AppendEntryValue(entry, value))
            continue;
        // The entry goes with its terminator into the entry buffer of the form.
        if (entry.size() + 1 > kt::params::kEntryBufferSize)
            throw CXException(XE_BAD_ARGUMENT);
        Put(out, entry);
    }
}

}  // namespace

void ParamText_Write(IParam* param, IXFile* out, const char* path) {
    std::string piece;
    piece.reserve(kt::params::kEntryBufferSize);
    piece.assign("\r\n[").append(path != nullptr ? path : "\\").append("]\t");
    if (piece.size() + 1 > kt::params::kLineBufferSize)
        throw CXException(XE_BAD_ARGUMENT);
    Put(out, piece);
    WriteValues(param, out, piece);

    Held<CTEnum<const char*>> names(param->EnumSections());
    if (!names)
        return;
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr)) {
        Held<IParam> section(param->GetSection(name, 0));
        if (section.get() != nullptr)
            ParamText_Write(section.get(), out, (std::string(path != nullptr ? path : "") + "\\" + name).c_str());
    }
}
