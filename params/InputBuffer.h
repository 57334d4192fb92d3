// The logical lines of the text form. A physical line is what the file's
// ReadLine gives with a limit of 65536 bytes (a longer one arrives in
// pieces); `|` splits it into logical lines, blanks and `|` around them are
// dropped, and a `;` at the start of a piece makes the rest of the physical
// line a comment.
#pragma once

#include <memory>

#include "kticore/files/File.h"

namespace kt::params {

// Bytes of the buffers the text form is read and written in: limits of the
// form, not of this implementation.
inline constexpr int kPhysicalLineLimit = 65536;
inline constexpr size_t kLineBufferSize = 67584;
inline constexpr size_t kEntryBufferSize = 65536;
inline constexpr size_t kIncludePathSize = 65536;

// How bytes of the current multibyte code page are scanned.
class TextScan {
public:
    TextScan();
    bool IsLead(char byte) const { return lead[static_cast<unsigned char>(byte)]; }
    bool HasLeadBytes() const { return anyLead; }
    // The byte after the character at `at`, no further than `end`.
    const char* NextChar(const char* at, const char* end) const {
        return IsLead(*at) && at + 1 < end ? at + 2 : at + 1;
    }

private:
    bool lead[256];
    bool anyLead = false;
};

// The one input buffer that all inputs of a reading share.
struct InputArea {
    char bytes[kLineBufferSize];
};

class CInputBuffer {
public:
    // Takes a reference on `file`.
    CInputBuffer(IXFile* file, InputArea& input, const TextScan& scan);
    ~CInputBuffer();
    CInputBuffer(const CInputBuffer&) = delete;
    CInputBuffer& operator=(const CInputBuffer&) = delete;

    // The next logical line into `line` (which has room for `maxChars` bytes
    // and a terminator) and its length; 0 at the end of the input.
    int ReadLine(char* line, int maxChars);
    // Gives up the rest of the current physical line: another input is
    // about to take over the shared buffer.
    void DropPhysicalLine() { cur = end + 1; }
    IXFile* File() const { return file; }

private:
    bool IsSkipped(char byte) const;
    bool FetchPhysicalLine();
    int CopyPiece(char* line, int maxChars);
    // Moves `end` back over blanks and `|` that end the physical line.
    void TrimEnd();

    IXFile* file;
    InputArea& input;
    const TextScan& scan;
    // The first and the last unread byte; cur above end: nothing left.
    char* cur;
    char* end;
};

// Blanks as the C locale's isspace has them.
inline bool IsBlank(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

}  // namespace kt::params
