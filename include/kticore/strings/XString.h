// CXString: narrow text in the process's multibyte code page, in a counted
// buffer that copies share until one of them changes it (copy on write).
//
// Positions count characters, where a lead byte and its trail byte are one
// character; sizes count bytes. A character passed or returned alone is a
// code: lead << 8 | trail, or the single byte. The layout (virtual table, then
// `data`, with a CXStringData in front of the text) is a binary contract:
// host modules compile the inline members below against it.
#pragma once

#include <cstdarg>
#include <cstring>

#include "kticore/platform/Platform.h"
#include "kticore/strings/StringData.h"

class KTCORE_API CXString {
public:
    CXString();
    CXString(const char* text);
    CXString(const KTWCHAR* text);  // from 16-bit text, in the ANSI code page
    CXString(const CXString& other);
    virtual ~CXString();

    CXString& operator=(const CXString& other);
    CXString& operator=(const KTWCHAR* text);
    CXString& operator=(const char* text) {
        if (text == nullptr)
            Release();
        else
            AssignCopy(text, static_cast<unsigned>(std::strlen(text)));
        return *this;
    }
    CXString& operator=(KTWCHAR ch);
    CXString& operator+=(const CXString& text);
    CXString& operator+=(KTWCHAR ch);

    operator const char*() const { return data; }

    // Buffer access: GetBuffer makes the buffer private with room for `n`
    // bytes and a terminator, and locks it until ReleaseBuffer; a copy taken
    // meanwhile copies the text instead of sharing it.
    char* GetBuffer(int n);
    void ReleaseBuffer(int ignored = -1);
    void FreeExtra();
    int GetAllocSize() const;

    // Reading
    unsigned GetLength() const;
    unsigned GetSize() const;
    unsigned GetSize(unsigned count) const;
    unsigned GetSize(unsigned start, unsigned count) const;
    const char* GetData(unsigned index) const;
    KTWCHAR GetAt(unsigned index) const;
    unsigned Copy(char* dest) const;
    unsigned Copy(char* dest, unsigned count) const;
    unsigned CopyFit(char* dest, unsigned size) const;
    int Compare(const char* text) const;
    int CompareI(const char* text) const;
    int CompareN(const char* text, int count) const;
    int CompareIN(const char* text, int count) const;

    // Searching: character positions, or -1
    int Find(const char* text, int start = 0) const;
    int Find(KTWCHAR ch, int start = 0) const;
    int FindOnOf(const char* set, int start = 0) const;
    int FindRev(KTWCHAR ch) const;
    int FindRevOnOf(const char* set) const;

    // Changing. A range (pos, n) may reach backward with a negative n; a
    // negative pos is the end.
    CXString& Insert(int pos, KTWCHAR ch);
    CXString& Insert(int pos, const char* text);
    CXString& Delete(int pos, int count);
    CXString& Replace(int pos, int count, const char* text);
    int Extract(int pos, int count, CXString& dest) const;
    int Extract(int pos, int count);
    int FindReplace(const char* from, const char* to);
    int FindReplace(KTWCHAR from, const char* to);
    int FindReplace(const char* from, KTWCHAR to);
    int FindReplace(KTWCHAR from, KTWCHAR to);
    void TrimLeft();
    void TrimRight();
    void Upper();
    void Lower();
    void CharToOemA();
    void OemToCharA();
    int Load(void* module, unsigned id);
    void Format(const char* format, ...);

    // File names: '\', '/' and ':' delimit directories, the last '.' behind
    // them the extension.
    const char* GetFileName() const;
    int GetFileName(char* dest) const;
    CXString FileName() const;
    const char* GetFileExt() const;
    int GetFileExt(char* dest) const;
    CXString FileExt() const;
    int GetFilePath(char* dest) const;
    CXString FilePath() const;
    void ChangeFileExt(const char* ext);
    CXString& AddDirDelim();
    CXString& AddFileExtDelim();
    int ReducePathString(int maxLen);

protected:
    void Init();
    void Release();
    void AllocBuffer(unsigned n);
    void ReallocBuffer(unsigned n);
    void AssignCopy(const char* text, unsigned n);
    void ConcatCopy(const char* text, unsigned n);
    void ConcatCopyTo(unsigned pos, const char* text, unsigned n);
    int FormatV(const char* format, va_list args);

    char* data;

private:
    template <class, class>
    friend struct kt::StringOps;
    template <class, class>
    friend struct kt::PathOps;
};

KTCORE_API CXString operator+(const CXString& left, const CXString& right);
KTCORE_API CXString operator+(const CXString& left, const char* right);
KTCORE_API CXString operator+(const char* left, const CXString& right);
KTCORE_API CXString operator+(const CXString& left, KTWCHAR right);
KTCORE_API CXString operator+(KTWCHAR left, const CXString& right);

// Locks a string's buffer for writing for the guard's lifetime.
template <class String, class Pointer>
class __CXBuff {
public:
    __CXBuff(String& string, int size) : buffer(string.GetBuffer(size)), string(string) {}
    __CXBuff(const __CXBuff&) = delete;
    __CXBuff& operator=(const __CXBuff&) = delete;
    virtual ~__CXBuff() { string.ReleaseBuffer(-1); }

    operator Pointer() const { return buffer; }

    Pointer buffer;
    String& string;
};
