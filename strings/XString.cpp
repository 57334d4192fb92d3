// CXString's members: each forwards to the implementation shared with
// CXStringW.
#include "kticore/strings/XString.h"

#include "platform/TextConversion.h"
#include "strings/PathOps.h"
#include "strings/StringOps.h"

namespace {

using Ops = kt::StringOps<CXString, kt::NarrowText>;
using Paths = kt::PathOps<CXString, kt::NarrowText>;

struct EmptyString {
    CXStringData header;
    char text[4];
};
EmptyString emptyString = {{-1, 0, 0}, {0, 0, 0, 0}};

}  // namespace

char* kt::NarrowText::EmptyText() { return emptyString.text; }

CXString::CXString() { Init(); }

CXString::CXString(const char* text) { Ops::ConstructFromText(*this, text); }

CXString::CXString(const KTWCHAR* text) {
    Init();
    operator=(text);
}

CXString::CXString(const CXString& other) { Ops::CopyConstruct(*this, other); }

CXString::~CXString() { Release(); }

CXString& CXString::operator=(const CXString& other) {
    Ops::Assign(*this, other);
    return *this;
}

// Converts in the ANSI code page, as the Windows conversion does for CP_ACP.
CXString& CXString::operator=(const KTWCHAR* text) {
    if (text == nullptr) {
        Release();
        return *this;
    }
    const int units = static_cast<int>(kt::WideText::Size(text));
    const int size = kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, text, units, nullptr, 0);
    AllocBuffer(static_cast<unsigned>(size) + 1);
    if (size > 0)
        kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, text, units, data, size);
    return *this;
}

CXString& CXString::operator=(KTWCHAR ch) {
    Ops::AssignChar(*this, ch);
    return *this;
}

CXString& CXString::operator+=(const CXString& text) {
    ConcatCopy(text.data, text.GetSize());
    return *this;
}

CXString& CXString::operator+=(KTWCHAR ch) {
    Ops::AppendChar(*this, ch);
    return *this;
}

char* CXString::GetBuffer(int n) { return Ops::GetBuffer(*this, n); }

void CXString::ReleaseBuffer(int) { Ops::ReleaseBuffer(*this); }

void CXString::FreeExtra() {}

int CXString::GetAllocSize() const { return Ops::GetAllocSize(*this); }

unsigned CXString::GetLength() const { return kt::NarrowText::Length(data); }

unsigned CXString::GetSize() const { return kt::NarrowText::Size(data); }

unsigned CXString::GetSize(unsigned count) const { return kt::NarrowText::UnitsOf(data, count); }

unsigned CXString::GetSize(unsigned start, unsigned count) const {
    return Ops::SizeOf(*this, start, count);
}

const char* CXString::GetData(unsigned index) const {
    return data + kt::NarrowText::UnitsOf(data, index);
}

KTWCHAR CXString::GetAt(unsigned index) const { return Ops::GetAt(*this, index); }

unsigned CXString::Copy(char* dest) const { return Ops::Copy(*this, dest, GetSize()); }

unsigned CXString::Copy(char* dest, unsigned count) const {
    return Ops::Copy(*this, dest, GetSize(count));
}

unsigned CXString::CopyFit(char* dest, unsigned size) const {
    return Ops::CopyFit(*this, dest, size);
}

int CXString::Compare(const char* text) const { return Ops::Compare(*this, text, -1, false); }

int CXString::CompareI(const char* text) const { return Ops::Compare(*this, text, -1, true); }

int CXString::CompareN(const char* text, int count) const {
    return Ops::Compare(*this, text, count, false);
}

int CXString::CompareIN(const char* text, int count) const {
    return Ops::Compare(*this, text, count, true);
}

int CXString::Find(const char* text, int start) const { return Ops::Find(*this, text, start); }

int CXString::Find(KTWCHAR ch, int start) const { return Ops::Find(*this, ch, start); }

int CXString::FindOnOf(const char* set, int start) const {
    return Ops::FindOnOf(*this, set, start);
}

int CXString::FindRev(KTWCHAR ch) const { return Ops::FindRev(*this, ch); }

int CXString::FindRevOnOf(const char* set) const { return Ops::FindRevOnOf(*this, set); }

CXString& CXString::Insert(int pos, KTWCHAR ch) {
    Ops::Insert(*this, pos, ch);
    return *this;
}

CXString& CXString::Insert(int pos, const char* text) {
    Ops::Insert(*this, pos, text);
    return *this;
}

CXString& CXString::Delete(int pos, int count) {
    Ops::Delete(*this, pos, count);
    return *this;
}

CXString& CXString::Replace(int pos, int count, const char* text) {
    Ops::Replace(*this, pos, count, text);
    return *this;
}

int CXString::Extract(int pos, int count, CXString& dest) const {
    return Ops::Extract(*this, pos, count, dest);
}

int CXString::Extract(int pos, int count) { return Ops::Extract(*this, pos, count, *this); }

int CXString::FindReplace(const char* from, const char* to) {
    return Ops::FindReplace(*this, from, to);
}

int CXString::FindReplace(KTWCHAR from, const char* to) {
    return Ops::FindReplace(*this, from, to);
}

int CXString::FindReplace(const char* from, KTWCHAR to) {
    return Ops::FindReplace(*this, from, to);
}

int CXString::FindReplace(KTWCHAR from, KTWCHAR to) { return Ops::FindReplace(*this, from, to); }

void CXString::TrimLeft() { Ops::TrimLeft(*this); }

void CXString::TrimRight() { Ops::TrimRight(*this); }

void CXString::Upper() { Ops::ChangeCase(*this, kt::NarrowText::ToUpper); }

void CXString::Lower() { Ops::ChangeCase(*this, kt::NarrowText::ToLower); }

void CXString::CharToOemA() {}

void CXString::OemToCharA() {}

int CXString::Load(void* module, unsigned id) { return Ops::Load(*this, module, id); }

void CXString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Ops::Format(*this, format, args);
    va_end(args);
}

int CXString::FormatV(const char* format, va_list args) { return Ops::FormatV(format, args); }

const char* CXString::GetFileName() const { return Paths::FileName(*this); }

int CXString::GetFileName(char* dest) const { return Paths::FileName(*this, dest); }

CXString CXString::FileName() const { return CXString(GetFileName()); }

const char* CXString::GetFileExt() const { return Paths::FileExt(*this); }

int CXString::GetFileExt(char* dest) const { return Paths::FileExt(*this, dest); }

CXString CXString::FileExt() const { return CXString(GetFileExt()); }

int CXString::GetFilePath(char* dest) const { return Paths::FilePath(*this, dest); }

CXString CXString::FilePath() const { return Paths::FilePath(*this); }

void CXString::ChangeFileExt(const char* ext) { Paths::ChangeFileExt(*this, ext); }

CXString& CXString::AddDirDelim() {
    Paths::AddDelimiter(*this, '\\', '/');
    return *this;
}

CXString& CXString::AddFileExtDelim() {
    Paths::AddDelimiter(*this, '.', '.');
    return *this;
}

int CXString::ReducePathString(int maxLen) { return Paths::ReducePathString(*this, maxLen); }

void CXString::Init() { Ops::Init(*this); }

void CXString::Release() { Ops::Release(*this); }

void CXString::AllocBuffer(unsigned n) { Ops::AllocBuffer(*this, n); }

void CXString::ReallocBuffer(unsigned n) { Ops::ReallocBuffer(*this, n); }

void CXString::AssignCopy(const char* text, unsigned n) { Ops::AssignCopy(*this, text, n); }

void CXString::ConcatCopy(const char* text, unsigned n) { Ops::ConcatCopy(*this, text, n); }

void CXString::ConcatCopyTo(unsigned pos, const char* text, unsigned n) {
    Ops::ConcatCopyTo(*this, pos, text, n);
}

CXString operator+(const CXString& left, const CXString& right) {
    return Ops::Concatenate(left, right);
}

CXString operator+(const CXString& left, const char* right) {
    return Ops::Concatenate(left, right);
}

CXString operator+(const char* left, const CXString& right) {
    return Ops::Concatenate(left, right);
}

CXString operator+(const CXString& left, KTWCHAR right) { return Ops::Concatenate(left, right); }

CXString operator+(KTWCHAR left, const CXString& right) { return Ops::Concatenate(left, right); }
