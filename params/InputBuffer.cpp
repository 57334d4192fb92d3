#include "params/InputBuffer.h"

#include <cstring>

#include "platform/MultiByte.h"

namespace kt::params {

TextScan::TextScan() {
    for (int byte = 0; byte < 256; ++byte) {
        lead[byte] = sys::IsLeadByte(static_cast<unsigned char>(byte));
        anyLead = anyLead || lead[byte];
    }
}

CInputBuffer::CInputBuffer(IXFile* file, InputArea& input, const TextScan& scan)
    : file(file), input(input), scan(scan), cur(input.bytes + 1), end(input.bytes) {
    file->AddRef();
}

CInputBuffer::~CInputBuffer() { file->Release(); }

bool CInputBuffer::IsSkipped(char byte) const { return IsBlank(byte) || byte == '|'; }

bool CInputBuffer::FetchPhysicalLine() {
    const int count = file->ReadLine(input.bytes, kPhysicalLineLimit);
    if (count <= 0)
        return false;
    cur = input.bytes;
    end = input.bytes + count - 1;
    TrimEnd();
    return true;
}

void CInputBuffer::TrimEnd() {
    if (!scan.HasLeadBytes()) {
        while (end >= cur && IsSkipped(*end))
            --end;
        return;
    }
    // A `|` may be the second byte of a character: only a walk from the
    // start knows where characters begin.
    char* last = cur - 1;
    for (const char* at = cur; at <= end; at = scan.NextChar(at, end + 1))
        if (!IsSkipped(*at) || scan.IsLead(*at))
            last = const_cast<char*>(scan.NextChar(at, end + 1)) - 1;
    end = last;
}

// Copies up to the next `|` or the end of the physical line, without the
// zero bytes, and moves `cur` there.
int CInputBuffer::CopyPiece(char* line, int maxChars) {
    const char* stop = end + 1;
    if (!scan.HasLeadBytes()) {
        const void* bar = std::memchr(cur, '|', static_cast<size_t>(stop - cur));
        if (bar != nullptr)
            stop = static_cast<const char*>(bar);
        const auto size = static_cast<size_t>(stop - cur);
        if (size <= static_cast<size_t>(maxChars) && std::memchr(cur, 0, size) == nullptr) {
            std::memcpy(line, cur, size);
            cur += size;
            return static_cast<int>(size);
        }
    }
    int length = 0;
    while (cur <= end && *cur != '|') {
        const char* next = scan.NextChar(cur, end + 1);
        for (; cur < next; ++cur)
            if (*cur != 0 && length < maxChars)
                line[length++] = *cur;
    }
    return length;
}

int CInputBuffer::ReadLine(char* line, int maxChars) {
    for (;;) {
        if (cur > end && !FetchPhysicalLine())
            return 0;
        while (cur <= end && IsSkipped(*cur))
            ++cur;
        if (cur > end)
            continue;
        if (*cur == ';') {
            cur = end + 1;
            continue;
        }
        const int length = CopyPiece(line, maxChars);
        line[length] = 0;
        if (length != 0)
            return length;
    }
}

}  // namespace kt::params
