// Private profile files: the platform's GetPrivateProfileStringA and
// WritePrivateProfileStringA, in the six uses the profile-file parameters make
// of them. The file format is the platform's; natively the POSIX side keeps
// the behaviour of Wine's functions, which the tests pin down for both:
//
// - A file is "[section]" lines, each followed by its "key=value" lines; a
//   carriage return, a line feed or both end a line. Section and key names
//   compare without regard to ASCII case; a key that is written again keeps
//   its place and the spelling of its first writing.
// - Names and values read lose the blanks at both of their ends (space, tab,
//   vertical tab, form feed and 0x1A); a value read back loses one pair of
//   quotes ('' or "") that encloses it whole. A zero byte ends the name or
//   the value it stands in. Names and texts written lose their leading
//   blanks only.
// - Lines without "=" and blank lines are no keys, and what is not understood
//   stays in the file when it is written again (blank lines do not). A key
//   whose name begins with ";" is a comment: it is found, but not listed.
// - Lookups use the first section of a name and its first key of a name.
//   Listings show every section in file order, and the keys of the first
//   section of the name.
// - A file that begins with the UTF-8 byte order mark holds UTF-8 text, which
//   the functions turn into ANSI text and back; it keeps its mark.
// - Writing makes the file, not its directory. A file marked read-only is
//   not written, on either build (Wine, run by a privileged user, would).
// - A name without a directory part names a file in the Windows directory,
//   not in the current one (see ProfileFilePath).
// - Section and key names longer than kLongestProfileName are refused unread
//   and unwritten: Wine's functions would take them for other names. Texts of
//   any length are written, and read cut to the buffer.
#pragma once

#include <cstring>
#include <string>

#include "kticore/platform/Platform.h"

namespace kt::sys {

// The longest section or key name that the profile functions take: Wine's
// ANSI functions convert each argument through a counted string of 16-bit
// lengths.
constexpr DWORD kLongestProfileName = 32766;

// Whether the profile functions look for `file` in the Windows directory: a
// name with neither a separator nor a drive in front.
inline bool IsBareFileName(const char* file) {
    return file != nullptr && std::strpbrk(file, "\\/") == nullptr &&
           !(file[0] != 0 && file[1] == ':');
}

// The file that the profile functions use for `file`: a bare name lies in the
// Windows directory; other names are taken as the file system takes them.
// Natively there is no Windows directory: a bare name names no file, and the
// result is empty.
std::string ProfileFilePath(const char* file);

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
