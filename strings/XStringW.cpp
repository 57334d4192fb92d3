// CXStringW's members: each forwards to the implementation shared with
// CXString.
#include "kticore/strings/XStringW.h"

#include <string>

#include "platform/TextConversion.h"
#include "strings/NarrowTextCodePage.h"
#include "strings/PathOps.h"
#include "strings/StringOps.h"

namespace {

using Ops = kt::StringOps<CXStringW, kt::WideText>;
using Paths = kt::PathOps<CXStringW, kt::WideText>;

struct EmptyString {
    CXStringData header;
    KTWCHAR text[4];
};
EmptyString emptyString = {{-1, 0, 0}, {0, 0, 0, 0}};

}  // namespace

KTWCHAR* kt::WideText::EmptyText() { return emptyString.text; }

CXStringW::CXStringW() { Init(); }

CXStringW::CXStringW(const KTWCHAR* text) { Ops::ConstructFromText(*this, text); }

CXStringW::CXStringW(const char* text) {
    Init();
    if (text != nullptr && *text != 0)
        hostMultiByteToUnicode(text, *this);
}

CXStringW::CXStringW(const CXStringW& other) { Ops::CopyConstruct(*this, other); }

CXStringW::~CXStringW() { Release(); }

CXStringW& CXStringW::operator=(const CXStringW& other) {
    Ops::Assign(*this, other);
    return *this;
}

CXStringW& CXStringW::operator+=(const CXStringW& text) {
    ConcatCopy(text.data, text.GetSize());
    return *this;
}

KTWCHAR* CXStringW::GetBuffer(int n) { return Ops::GetBuffer(*this, n); }

void CXStringW::ReleaseBuffer(int) { Ops::ReleaseBuffer(*this); }

void CXStringW::FreeExtra() {}

int CXStringW::GetAllocSize() const { return Ops::GetAllocSize(*this); }

unsigned CXStringW::GetLength() const { return kt::WideText::Length(data); }

unsigned CXStringW::GetSize() const { return kt::WideText::Size(data); }

unsigned CXStringW::GetSize(unsigned count) const { return kt::WideText::UnitsOf(data, count); }

unsigned CXStringW::GetSize(unsigned start, unsigned count) const {
    return Ops::SizeOf(*this, start, count);
}

const KTWCHAR* CXStringW::GetData(unsigned index) const {
    return data + kt::WideText::UnitsOf(data, index);
}

KTWCHAR CXStringW::GetAt(unsigned index) const { return Ops::GetAt(*this, index); }

unsigned CXStringW::Copy(KTWCHAR* dest) const { return Ops::Copy(*this, dest, GetSize()); }

unsigned CXStringW::Copy(KTWCHAR* dest, unsigned count) const {
    return Ops::Copy(*this, dest, GetSize(count));
}

unsigned CXStringW::CopyFit(KTWCHAR* dest, unsigned size) const {
    return Ops::CopyFit(*this, dest, size);
}

int CXStringW::Compare(const KTWCHAR* text) const { return Ops::Compare(*this, text, -1, false); }

int CXStringW::CompareI(const KTWCHAR* text) const { return Ops::Compare(*this, text, -1, true); }

int CXStringW::CompareN(const KTWCHAR* text, int count) const {
    return Ops::Compare(*this, text, count, false);
}

int CXStringW::CompareIN(const KTWCHAR* text, int count) const {
    return Ops::Compare(*this, text, count, true);
}

int CXStringW::Find(const KTWCHAR* text, int start) const { return Ops::Find(*this, text, start); }

int CXStringW::Find(KTWCHAR ch, int start) const { return Ops::Find(*this, ch, start); }

int CXStringW::FindI(const KTWCHAR* text) const {
    if (text == nullptr || *text == 0 || *data == 0)
        return -1;
    CXStringW lowerText(text);
    CXStringW lowerSelf(*this);
    lowerText.Lower();
    lowerSelf.Lower();
    return lowerSelf.Find(lowerText, 0);
}

int CXStringW::FindOnOf(const KTWCHAR* set, int start) const {
    return Ops::FindOnOf(*this, set, start);
}

int CXStringW::FindRev(KTWCHAR ch) const { return Ops::FindRev(*this, ch); }

int CXStringW::FindRevOnOf(const KTWCHAR* set) const { return Ops::FindRevOnOf(*this, set); }

CXStringW& CXStringW::Insert(int pos, KTWCHAR ch) {
    Ops::Insert(*this, pos, ch);
    return *this;
}

CXStringW& CXStringW::Insert(int pos, const KTWCHAR* text) {
    Ops::Insert(*this, pos, text);
    return *this;
}

CXStringW& CXStringW::Delete(int pos, int count) {
    Ops::Delete(*this, pos, count);
    return *this;
}

CXStringW& CXStringW::Replace(int pos, int count, const KTWCHAR* text) {
    Ops::Replace(*this, pos, count, text);
    return *this;
}

int CXStringW::Extract(int pos, int count, CXStringW& dest) const {
    return Ops::Extract(*this, pos, count, dest);
}

int CXStringW::Extract(int pos, int count) { return Ops::Extract(*this, pos, count, *this); }

int CXStringW::FindReplace(const KTWCHAR* from, const KTWCHAR* to) {
    return Ops::FindReplace(*this, from, to);
}

int CXStringW::FindReplace(KTWCHAR from, const KTWCHAR* to) {
    return Ops::FindReplace(*this, from, to);
}

int CXStringW::FindReplace(const KTWCHAR* from, KTWCHAR to) {
    return Ops::FindReplace(*this, from, to);
}

int CXStringW::FindReplace(KTWCHAR from, KTWCHAR to) { return Ops::FindReplace(*this, from, to); }

void CXStringW::TrimLeft() { Ops::TrimLeft(*this); }

void CXStringW::TrimRight() { Ops::TrimRight(*this); }

void CXStringW::Upper() { Ops::ChangeCase(*this, kt::WideText::ToUpper); }

void CXStringW::Lower() { Ops::ChangeCase(*this, kt::WideText::ToLower); }

void CXStringW::CharToOemA() {}

void CXStringW::OemToCharA() {}

int CXStringW::Load(void* module, unsigned id) { return Ops::Load(*this, module, id); }

void CXStringW::Format(const KTWCHAR* format, ...) {
    va_list args;
    va_start(args, format);
    Ops::Format(*this, format, args);
    va_end(args);
}

int CXStringW::FormatV(const KTWCHAR* format, va_list args) { return Ops::FormatV(format, args); }

const KTWCHAR* CXStringW::GetFileName() const { return Paths::FileName(*this); }

int CXStringW::GetFileName(KTWCHAR* dest) const { return Paths::FileName(*this, dest); }

CXStringW CXStringW::FileName() const { return CXStringW(GetFileName()); }

const KTWCHAR* CXStringW::GetFileExt() const { return Paths::FileExt(*this); }

int CXStringW::GetFileExt(KTWCHAR* dest) const { return Paths::FileExt(*this, dest); }

CXStringW CXStringW::FileExt() const { return CXStringW(GetFileExt()); }

int CXStringW::GetFilePath(KTWCHAR* dest) const { return Paths::FilePath(*this, dest); }

CXStringW CXStringW::FilePath() const { return Paths::FilePath(*this); }

void CXStringW::ChangeFileExt(const KTWCHAR* ext) { Paths::ChangeFileExt(*this, ext); }

CXStringW& CXStringW::AddDirDelim() {
    Paths::AddDelimiter(*this, '\\', '/');
    return *this;
}

CXStringW& CXStringW::AddFileExtDelim() {
    Paths::AddDelimiter(*this, '.', '.');
    return *this;
}

int CXStringW::ReducePathString(int maxLen) { return Paths::ReducePathString(*this, maxLen); }

void CXStringW::Init() { Ops::Init(*this); }

void CXStringW::Release() { Ops::Release(*this); }

void CXStringW::AllocBuffer(unsigned n) { Ops::AllocBuffer(*this, n); }

void CXStringW::ReallocBuffer(unsigned n) { Ops::ReallocBuffer(*this, n); }

void CXStringW::AssignCopy(const KTWCHAR* text, unsigned n) { Ops::AssignCopy(*this, text, n); }

void CXStringW::ConcatCopy(const KTWCHAR* text, unsigned n) { Ops::ConcatCopy(*this, text, n); }

void CXStringW::ConcatCopyTo(unsigned pos, const KTWCHAR* text, unsigned n) {
    Ops::ConcatCopyTo(*this, pos, text, n);
}

CXStringW operator+(const CXStringW& left, const CXStringW& right) {
    return Ops::Concatenate(left, right);
}

CXStringW operator+(const CXStringW& left, const KTWCHAR* right) {
    return Ops::Concatenate(left, right);
}

CXStringW operator+(const KTWCHAR* left, const CXStringW& right) {
    return Ops::Concatenate(left, right);
}

CXStringW operator+(const CXStringW& left, KTWCHAR right) { return Ops::Concatenate(left, right); }

CXStringW operator+(KTWCHAR left, const CXStringW& right) { return Ops::Concatenate(left, right); }

void hostMultiByteToUnicode(const char* text, CXStringW& out) {
    // The terminator is converted too, so an empty text converts to one unit
    // and only a text that cannot be converted at all gives nothing.
    const int size = text != nullptr ? static_cast<int>(kt::NarrowText::Size(text)) + 1 : 0;
    const unsigned codePage = kt::NarrowTextCodePage();
    const int units = kt::sys::MultiByteToWide(codePage, text, size, nullptr, 0);
    if (units <= 0) {
        out = static_cast<const KTWCHAR*>(nullptr);
        return;
    }
    // Converted aside, with a spare 0 unit, and then assigned as a text, so
    // `out` always gets a new buffer, sized as an assignment sizes it.
    std::basic_string<KTWCHAR> converted(static_cast<size_t>(units) + 1, 0);
    kt::sys::MultiByteToWide(codePage, text, size, &converted[0], units);
    Ops::AssignCopy(out, converted.data(), kt::WideText::Size(converted.data()));
}
