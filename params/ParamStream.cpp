// The stream form of a tree: for each sub-section its name and its own form,
// an empty name; for each value its name and the stored variant, an empty
// name. No header, no lengths.
#include <cstring>
#include <memory>

#include "kticore/core/Exception.h"
#include "kticore/objects/Persist.h"
#include "kticore/params/ParamTools.h"
#include "params/Held.h"

namespace {

using kt::params::Held;
using NameEnum = CTEnum<const char*>;

// A name is read back with this limit, terminator included, and ends at a
// zero byte or a line feed.
constexpr int kNameLimit = 1024;
// A memory stream's ReadLine writes up to two bytes behind the limit.
constexpr int kNameBufferSize = kNameLimit + 2;

// Sections nest no deeper than this in the stream form, on the way out and
// on the way in, so that neither walks the stack out.
constexpr int kNestingLimit = 1000;

// A form nested deeper than the limit: the whole load fails.
struct TooDeep {};

// A stored object's class name is read back as a line with this limit,
// terminator included, and must not be empty.
constexpr int kClassNameLimit = 260;

// Whether a text read back as a line of at most `limit` bytes comes back whole.
bool FitsLine(const char* text, int limit) {
    return std::strlen(text) < static_cast<size_t>(limit - 1) && std::strchr(text, '\n') == nullptr;
}

void WriteName(IXStream* stream, const char* name) {
    if (!FitsLine(name, kNameLimit))
        throw CXException(XE_BAD_ARGUMENT);
    stream->WriteString(name);
}

// An object read under a class name that ended at a line feed or at the
// limit (a proxy keeps such a name) would be written back under a name that
// reads differently, and all behind it would be read from the wrong place.
void CheckStorable(const CKTVariant& value) {
    if (value.vt != KTVT_OBJECT || value.punkVal == nullptr)
        return;
    IPersistXStream* persist = nullptr;
    value.punkVal->QueryInterface(typeid(IPersistXStream), reinterpret_cast<void**>(&persist));
    const Held<IPersistXStream> held(persist);
    if (persist == nullptr)
        return;  // written as no object
    const char* className = persist->GetClassName();
    if (*className == 0 || !FitsLine(className, kClassNameLimit))
        throw CXException(XE_BAD_ARGUMENT);
}

int SaveLevel(IXStream* stream, IParam* param, int depth) {
    if (depth > kNestingLimit)
        throw CXException(XE_BAD_ARGUMENT);
    Held<NameEnum> sections(param != nullptr ? param->EnumSections() : nullptr);
    Held<NameEnum> values(param != nullptr ? param->EnumValues() : nullptr);
    try {
        const char* name = nullptr;
        while (sections && sections->Next(1, &name, nullptr)) {
            if (name == nullptr || *name == 0)
                continue;
            WriteName(stream, name);
            Held<IParam> section(param->GetSection(name, 0));
            SaveLevel(stream, section.get(), depth + 1);
        }
        stream->WriteString("");
        while (values && values->Next(1, &name, nullptr)) {
            CKTVariant value;
            param->GetValue(name, &value);
            CheckStorable(value);
            WriteName(stream, name);
            stream->WriteVariant(&value);
        }
        stream->WriteString("");
        return 1;
    } catch (const CXFileException&) {
        return 0;
    }
}

void Empty(IParam* param) {
    param->DeleteAllSections();
    param->DeleteAllValues();
}

int LoadLevel(IXStream* stream, IParam* param, char* name, int depth) {
    Empty(param);
    try {
        const unsigned length = stream->GetLength();
        if (length == 0)
            return 1;
        while (stream->GetPosition() < length && stream->ReadLine(name, kNameLimit) >= 2) {
            if (depth >= kNestingLimit)
                throw TooDeep();
            Held<IParam> section(param->CreateSection(name));
            LoadLevel(stream, section.get(), name, depth + 1);
        }
        while (stream->GetPosition() < length && stream->ReadLine(name, kNameLimit) >= 2) {
            CKTVariant value;
            stream->ReadVariant(&value);
            param->SetValue(name, &value);
        }
    } catch (const CXEofException&) {
        // A cut stream: what has been read stays.
    } catch (const CXMemException&) {
        throw;
    } catch (const CXException&) {
        // A failing stream, or stored data that does not hold together (an
        // object longer than what is left of the stream).
        Empty(param);
        return 0;
    }
    return 1;
}

}  // namespace

int SaveParamToXStream(IXStream* stream, IParam* param) { return SaveLevel(stream, param, 0); }

int LoadParamFromXStream(IXStream* stream, IParam* param) {
    const auto name = std::make_unique<char[]>(kNameBufferSize);
    try {
        return LoadLevel(stream, param, name.get(), 0);
    } catch (const TooDeep&) {
        Empty(param);
        return 0;
    }
}
