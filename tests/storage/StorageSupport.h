// Storages for tests: references held, streams written and read as text,
// enumerations as lists, failures as what they carried.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/storage/CompoundStorage.h"
#include "tests/support/Counted.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/WideText.h"

namespace kt::test {

using StorageRef = Ref<IXStorage>;

inline void WriteText(IXStorage* storage, const char* name, const std::string& text) {
    Ref<IXStream> stream(storage->CreateStream(name));
    ASSERT_NE(stream, nullptr) << name;
    stream->Write(text.data(), static_cast<unsigned>(text.size()));
}

// The whole stream; "<none>" when it cannot be opened.
inline std::string ReadText(IXStorage* storage, const char* name) {
    Ref<IXStream> stream(storage->OpenStream(name));
    if (stream == nullptr)
        return "<none>";
    std::string text(stream->GetLength(), '\0');
    stream->Read(text.data(), static_cast<unsigned>(text.size()));
    return text;
}

// Bytes as lower-case hexadecimal digits, as the independent reader lists them.
inline std::string Hex(const std::string& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char byte : bytes)
        hex += {digits[byte >> 4], digits[byte & 15]};
    return hex;
}

inline std::vector<std::string> ElementNames(CTEnum<const char*>* walk) {
    std::vector<std::string> names;
    const char* name = nullptr;
    while (walk->Next(1, &name, nullptr))
        names.push_back(name);
    walk->Release();
    return names;
}

// The names of the streams of a storage as the platform's own enumeration
// gives them (ASCII names).
inline std::vector<std::string> OleStreamNames(IXStorage* storage) {
    auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
    IEnumSTATSTG* elements = nullptr;
    std::vector<std::string> names;
    if (ole->EnumElements(0, nullptr, 0, &elements) == S_OK) {
        STATSTG element;
        while (elements->Next(1, &element, nullptr) == S_OK) {
            const WideString name = Wide(element.pwcsName);
            if (element.type == STGTY_STREAM)
                names.emplace_back(name.begin(), name.end());
            CoTaskMemFree(element.pwcsName);
        }
        elements->Release();
    }
    ole->Release();
    return names;
}

}  // namespace kt::test
