// CXStringW: the twin of CXString for 16-bit text. A character is one unit
// (surrogate pairs are not looked at); positions and sizes count units, but
// `alloc` in the buffer header counts bytes. File names, URLs and translated
// texts travel in it.
#pragma once

#include <cstdarg>
#include <string>

#include "kticore/platform/Platform.h"
#include "kticore/strings/StringData.h"
#include "kticore/strings/XString.h"

class KTCORE_API CXStringW {
public:
    CXStringW();
    CXStringW(const KTWCHAR* text);
    // From narrow text in the code page that the translation has set (the
    // ANSI code page until then); see hostMultiByteToUnicode.
    CXStringW(const char* text);
    CXStringW(const CXStringW& other);
    virtual ~CXStringW();

    CXStringW& operator=(const CXStringW& other);
    CXStringW& operator=(const KTWCHAR* text) {
        if (text == nullptr)
            Release();
        else
            AssignCopy(text, static_cast<unsigned>(std::char_traits<KTWCHAR>::length(text)));
        return *this;
    }
    CXStringW& operator=(KTWCHAR unit) {
        AllocBuffer(2);  // the unit and the terminator
        data[0] = unit;
        return *this;
    }
    CXStringW& operator+=(const CXStringW& text);
    CXStringW& operator+=(KTWCHAR unit) {
        ConcatCopy(&unit, 1);
        return *this;
    }

    operator const KTWCHAR*() const { return data; }

    KTWCHAR* GetBuffer(int n);
    void ReleaseBuffer(int ignored = -1);
    void FreeExtra();
    int GetAllocSize() const;

    // Reading. A null argument is answered, not followed.
    unsigned GetLength() const;
    unsigned GetSize() const;
    unsigned GetSize(unsigned count) const;
    unsigned GetSize(unsigned start, unsigned count) const;
    const KTWCHAR* GetData(unsigned index) const;
    KTWCHAR GetAt(unsigned index) const;
    unsigned Copy(KTWCHAR* dest) const;
    unsigned Copy(KTWCHAR* dest, unsigned count) const;
    unsigned CopyFit(KTWCHAR* dest, unsigned size) const;
    int Compare(const KTWCHAR* text) const;
    int CompareI(const KTWCHAR* text) const;
    int CompareN(const KTWCHAR* text, int count) const;
    int CompareIN(const KTWCHAR* text, int count) const;

    // Searching: unit positions, or -1
    int Find(const KTWCHAR* text, int start = 0) const;
    int Find(KTWCHAR unit, int start = 0) const;
    int FindI(const KTWCHAR* text) const;
    int FindOnOf(const KTWCHAR* set, int start = 0) const;
    int FindRev(KTWCHAR unit) const;
    int FindRevOnOf(const KTWCHAR* set) const;

    // Changing
    CXStringW& Insert(int pos, KTWCHAR unit);
    CXStringW& Insert(int pos, const KTWCHAR* text);
    CXStringW& Delete(int pos, int count);
    CXStringW& Replace(int pos, int count, const KTWCHAR* text);
    int Extract(int pos, int count, CXStringW& dest) const;
    int Extract(int pos, int count);
    int FindReplace(const KTWCHAR* from, const KTWCHAR* to);
    int FindReplace(KTWCHAR from, const KTWCHAR* to);
    int FindReplace(const KTWCHAR* from, KTWCHAR to);
    int FindReplace(KTWCHAR from, KTWCHAR to);
    void TrimLeft();
    void TrimRight();
    void Upper();
    void Lower();
    void CharToOemA();
    void OemToCharA();
    int Load(void* module, unsigned id);
    void Format(const KTWCHAR* format, ...);

    // File names, as in CXString
    const KTWCHAR* GetFileName() const;
    int GetFileName(KTWCHAR* dest) const;
    CXStringW FileName() const;
    const KTWCHAR* GetFileExt() const;
    int GetFileExt(KTWCHAR* dest) const;
    CXStringW FileExt() const;
    int GetFilePath(KTWCHAR* dest) const;
    CXStringW FilePath() const;
    void ChangeFileExt(const KTWCHAR* ext);
    CXStringW& AddDirDelim();
    CXStringW& AddFileExtDelim();
    int ReducePathString(int maxLen);

protected:
    void Init();
    void Release();
    void AllocBuffer(unsigned n);
    void ReallocBuffer(unsigned n);
    void AssignCopy(const KTWCHAR* text, unsigned n);
    void ConcatCopy(const KTWCHAR* text, unsigned n);
    void ConcatCopyTo(unsigned pos, const KTWCHAR* text, unsigned n);
    int FormatV(const KTWCHAR* format, va_list args);

    KTWCHAR* data;

private:
    template <class, class>
    friend struct kt::StringOps;
    template <class, class>
    friend struct kt::PathOps;
};

KTCORE_API CXStringW operator+(const CXStringW& left, const CXStringW& right);
KTCORE_API CXStringW operator+(const CXStringW& left, const KTWCHAR* right);
KTCORE_API CXStringW operator+(const KTWCHAR* left, const CXStringW& right);
KTCORE_API CXStringW operator+(const CXStringW& left, KTWCHAR right);
KTCORE_API CXStringW operator+(KTWCHAR left, const CXStringW& right);

// Converts narrow text to 16-bit text in the narrow-text code page, which a
// translation file sets (0, the ANSI code page, until then). Null, empty or
// unconvertible text gives an empty string.
KTCORE_API void hostMultiByteToUnicode(const char* text, CXStringW& out);
