// Streams of a storage written and read as runs of bytes, and bytes shown as
// the independent reader lists them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "kticore/storage/Storage.h"
#include "tests/support/Counted.h"

namespace kt::test {

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

// Lower-case hexadecimal digits, two a byte.
inline std::string Hex(const std::string& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char byte : bytes)
        hex += {digits[byte >> 4], digits[byte & 15]};
    return hex;
}

}  // namespace kt::test
