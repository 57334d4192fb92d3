// Private profile files: the platform's GetPrivateProfileStringA and
// WritePrivateProfileStringA, in the six uses the profile-file parameters make
// of them. The file format is the platform's; natively the POSIX side keeps
// the behaviour of Wine's functions, which the tests pin down for both:
//
// - A file is "[section]" lines, each followed by its "key=value" lines.
//   Section and key names compare without regard to ASCII case; a key that
//   is written again keeps its place and the spelling of its first writing.
// - Names and values lose the blanks at both of their ends; a value read back
//   loses one pair of quotes ('' or "") that encloses it whole.
// - Lines without "=" (comments among them) and blank lines are no keys, and
//   what is not understood stays in the file when it is written again.
// - Lookups use the first section of a name and its first key of a name.
//   Listings show every section in file order, and the keys of the first
//   section of the name.
// - Writing makes the file, not its directory. A file marked read-only is
//   not written, on either build (Wine, run by a privileged user, would).
// - Texts longer than kLongestProfileText are refused unread and unwritten:
//   Wine's functions fail or fault on them.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// The longest section name, key name or value that the profile functions
// take: Wine converts each argument through a counted string of 16-bit
// lengths.
constexpr DWORD kLongestProfileText = 32766;

// The text of a key: at most size - 1 bytes, terminated; the result is the
// number of bytes copied, 0 when the key is absent or empty. A size of 0
// writes nothing.
DWORD ReadProfileString(const char* section, const char* key, char* buffer, DWORD size,
                        const char* file);

// Names as a list: each name zero-terminated, a further zero at the end, the
// result the length without that final zero; 0 with an empty first name when
// there is none. A list that does not fit is cut: the result is size - 2, and
// only the bytes up to buffer[size - 2], a zero, are set; the last name in
// the buffer may be a piece of one.
DWORD ReadProfileKeyNames(const char* section, char* buffer, DWORD size, const char* file);
DWORD ReadProfileSectionNames(char* buffer, DWORD size, const char* file);

// Sets the key, making the section and the file as needed. False when nothing
// was written.
bool WriteProfileString(const char* section, const char* key, const char* text,
                        const char* file);
// Removes the key, or the first section of the name with all its keys. Also
// true when there was nothing to remove.
bool DeleteProfileKey(const char* section, const char* key, const char* file);
bool DeleteProfileSection(const char* section, const char* file);

}  // namespace kt::sys
