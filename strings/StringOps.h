// The implementation of CXString and CXStringW, written once against the
// operations of their text (NarrowText, WideText). The classes' members
// forward here.
//
// Buffers grow to the exact room each change asks for and never shrink. One
// unit behind the text area is allocated too and stays 0, so that text is
// terminated even where an operation fills the text area to its end.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstring>
#include <functional>
#include <new>
#include <string>

#include "kticore/strings/StringData.h"
#include "platform/StringResource.h"
#include "strings/FormatEngine.h"
#include "strings/TextTraits.h"

namespace kt {

template <class String, class Text>
struct StringOps {
    using Unit = typename Text::Unit;
    using Buffer = std::basic_string<Unit>;

    // ---- The buffer ----

    static CXStringData* Header(const Unit* text) {
        return reinterpret_cast<CXStringData*>(const_cast<Unit*>(text)) - 1;
    }
    static bool IsEmptyString(const Unit* text) { return text == Text::EmptyText(); }
    static unsigned Capacity(const String& s) {
        return static_cast<unsigned>(Header(s.data)->alloc) / sizeof(Unit);
    }

    static Unit* NewBuffer(unsigned units) {
        if (size_t{units} * sizeof(Unit) > static_cast<size_t>(INT_MAX))
            throw std::bad_alloc();  // `alloc` could not describe it
        const size_t bytes = sizeof(CXStringData) + (size_t{units} + 1) * sizeof(Unit);
        char* block = new char[bytes]();
        CXStringData* header = reinterpret_cast<CXStringData*>(block);
        header->refs = 1;
        header->length = 0;
        header->alloc = static_cast<int>(units * sizeof(Unit));
        return reinterpret_cast<Unit*>(header + 1);
    }

    static void FreeBuffer(Unit* text) { delete[] reinterpret_cast<char*>(Header(text)); }

    static void Init(String& s) { s.data = Text::EmptyText(); }

    static void Release(String& s) {
        if (IsEmptyString(s.data))
            return;
        CXStringData* header = Header(s.data);
        if (header->refs <= 1)  // a locked buffer counts as one reference
            FreeBuffer(s.data);
        else
            --header->refs;
        Init(s);
    }

    static void Adopt(String& s, Unit* text) {
        Release(s);
        s.data = text;
    }

    static void AllocBuffer(String& s, unsigned units) { Adopt(s, NewBuffer(units)); }

    // Whether the buffer is this string's alone (a locked one is) and holds
    // `units` units.
    static bool HasPrivateRoom(const String& s, unsigned units) {
        const CXStringData* header = Header(s.data);
        return header->refs < 2 &&
               size_t{units} * sizeof(Unit) <= static_cast<size_t>(header->alloc);
    }

    static void ReallocBuffer(String& s, unsigned units) {
        if (HasPrivateRoom(s, units))
            return;
        // The new buffer is filled before the old one is let go, so the old
        // text lives through the copy whether it is shared, locked or ours.
        Unit* text = NewBuffer(units);
        std::memcpy(text, s.data, std::min(Text::Size(s.data), units) * sizeof(Unit));
        Adopt(s, text);
    }

    static void AssignCopy(String& s, const Unit* text, unsigned n) {
        if (text == s.data)
            return;
        Unit* copy = NewBuffer(n + Text::kAssignSpare);
        std::memcpy(copy, text, n * sizeof(Unit));
        Header(copy)->length = static_cast<int>(n);
        Adopt(s, copy);
    }

    // `text`, or a copy of it in `copy` where it lies in the string's own
    // buffer, which a change may move or free.
    static const Unit* Detached(const String& s, const Unit* text, unsigned n, Buffer& copy) {
        const std::less<const Unit*> before;
        if (text == nullptr || IsEmptyString(s.data) || before(text, s.data) ||
            before(s.data + Capacity(s), text))
            return text;
        copy.assign(text, n);
        return copy.c_str();
    }

    static void ConcatCopy(String& s, const Unit* text, unsigned n) {
        ConcatCopyTo(s, Text::Size(s.data), text, n);
    }

    static void ConcatCopyTo(String& s, unsigned pos, const Unit* text, unsigned n) {
        if (text == nullptr)
            return;
        Buffer copy;
        text = Detached(s, text, n, copy);
        pos = std::min(pos, Text::Size(s.data));
        ReallocBuffer(s, pos + n + 1);
        std::memcpy(s.data + pos, text, n * sizeof(Unit));
        s.data[pos + n] = 0;
        Header(s.data)->length = static_cast<int>(pos + n);
    }

    static Unit* GetBuffer(String& s, int n) {
        ReallocBuffer(s, static_cast<unsigned>(std::max(n, 0)) + 1);
        Header(s.data)->refs = -1;
        return s.data;
    }

    static void ReleaseBuffer(String& s) {
        if (!IsEmptyString(s.data))
            Header(s.data)->refs = 1;
    }

    static int GetAllocSize(const String& s) { return Header(s.data)->alloc; }

    // ---- Copying ----

    static void CopyConstruct(String& s, const String& other) {
        Init(s);
        Assign(s, other);
    }

    static void Assign(String& s, const String& other) {
        if (s.data == other.data)
            return;
        if (IsEmptyString(other.data)) {
            Release(s);
        } else if (Header(other.data)->refs > 0) {
            Release(s);
            ++Header(other.data)->refs;
            s.data = other.data;
        } else {  // locked: a copy of the text, never a share
            AssignCopy(s, other.data, Text::Size(other.data));
        }
    }

    static void ConstructFromText(String& s, const Unit* text) {
        Init(s);
        if (text != nullptr && *text != 0)
            AssignCopy(s, text, Text::Size(text));
    }

    static void AssignChar(String& s, KTWCHAR ch) {
        Unit units[2];
        unsigned n = Text::Encode(ch, units);
        AllocBuffer(s, n + 1);
        std::memcpy(s.data, units, n * sizeof(Unit));
    }

    static void AppendChar(String& s, KTWCHAR ch) {
        Unit units[2];
        ConcatCopy(s, units, Text::Encode(ch, units));
    }

    static String Concatenate(const Unit* left, const Unit* right) {
        const unsigned leftSize = left != nullptr ? Text::Size(left) : 0;
        const unsigned rightSize = right != nullptr ? Text::Size(right) : 0;
        String result;
        AllocBuffer(result, leftSize + rightSize + 1);
        if (leftSize != 0)
            std::memcpy(result.data, left, leftSize * sizeof(Unit));
        if (rightSize != 0)
            std::memcpy(result.data + leftSize, right, rightSize * sizeof(Unit));
        return result;
    }

    static String Concatenate(const Unit* left, KTWCHAR right) {
        Unit units[3] = {};
        Text::Encode(right, units);
        return Concatenate(left, units);
    }

    static String Concatenate(KTWCHAR left, const Unit* right) {
        Unit units[3] = {};
        Text::Encode(left, units);
        return Concatenate(units, right);
    }

    // ---- Reading ----

    static unsigned UnitsBefore(const String& s, int position) {
        return position <= 0 ? 0 : Text::UnitsOf(s.data, static_cast<unsigned>(position));
    }

    static unsigned SizeOf(const String& s, unsigned start, unsigned count) {
        return Text::UnitsOf(s.data + Text::UnitsOf(s.data, start), count);
    }

    static KTWCHAR GetAt(const String& s, unsigned index) {
        return Text::CodeAt(s.data + Text::UnitsOf(s.data, index));
    }

    static unsigned Copy(const String& s, Unit* dest, unsigned units) {
        if (dest == nullptr)
            return 0;
        std::memcpy(dest, s.data, units * sizeof(Unit));
        dest[units] = 0;
        return units;
    }

    static unsigned CopyFit(const String& s, Unit* dest, unsigned size) {
        if (dest == nullptr || size == 0)
            return 0;
        // Whole characters only: a double-byte character is never split.
        unsigned fits = 0;
        for (const Unit* p = s.data; *p != 0;) {
            p = Text::Next(p);
            const unsigned behind = static_cast<unsigned>(p - s.data);
            if (behind > size - 1)
                break;
            fits = behind;
        }
        return Copy(s, dest, fits);
    }

    static int Compare(const String& s, const Unit* text, int count, bool ignoreCase) {
        if (text == nullptr)
            return 1;
        const unsigned n = static_cast<unsigned>(count);
        return ignoreCase ? Text::CompareIgnoringCase(s.data, text, n)
                          : Text::Compare(s.data, text, n);
    }

    // ---- Searching ----

    // The character position of `found` within the string, or -1.
    static int PositionOf(const String& s, const Unit* found) {
        if (found == nullptr)
            return -1;
        int position = 0;
        for (const Unit* p = s.data; p < found; p = Text::Next(p))
            ++position;
        return position;
    }

    template <class Search>
    static int SearchFrom(const String& s, int start, Search search) {
        if (*s.data == 0)
            return -1;
        return PositionOf(s, search(s.data + UnitsBefore(s, start)));
    }

    static int Find(const String& s, const Unit* text, int start) {
        if (text == nullptr)
            return -1;
        return SearchFrom(s, start,
                          [text](const Unit* from) { return Text::FindSubstring(from, text); });
    }

    static int Find(const String& s, KTWCHAR ch, int start) {
        return SearchFrom(s, start, [ch](const Unit* from) { return Text::FindChar(from, ch); });
    }

    static int FindOnOf(const String& s, const Unit* set, int start) {
        if (set == nullptr)
            return -1;
        return SearchFrom(s, start, [set](const Unit* from) { return Text::FindOneOf(from, set); });
    }

    static int FindRev(const String& s, KTWCHAR ch) {
        return SearchFrom(s, 0, [ch](const Unit* from) { return Text::FindLastChar(from, ch); });
    }

    static int FindRevOnOf(const String& s, const Unit* set) {
        if (set == nullptr)
            return -1;
        return SearchFrom(s, 0, [set](const Unit* from) { return Text::FindLastOneOf(from, set); });
    }

    // ---- Changing ----

    struct Range {
        unsigned begin;  // units
        unsigned end;
        unsigned size() const { return end - begin; }
    };

    // A negative `pos`, or one past the end, is the end; `count` may reach
    // backward; the range is clipped to the text.
    static Range RangeOf(const String& s, int pos, int count) {
        const long long length = Text::Length(s.data);
        long long from = pos < 0 || pos > length ? length : pos;
        long long to = from + count;
        const long long low = std::max(0LL, std::min(from, to));
        const long long high = std::min(length, std::max(from, to));
        return {UnitsBefore(s, static_cast<int>(low)), UnitsBefore(s, static_cast<int>(high))};
    }

    static unsigned InsertionPoint(const String& s, int pos) {
        const unsigned length = Text::Length(s.data);
        return pos < 0 || static_cast<unsigned>(pos) > length ? Text::Size(s.data)
                                                              : UnitsBefore(s, pos);
    }

    // Puts `n` units of `text` in the place of `removed` units at `at`. The
    // buffer must be private with room for `room` units (at least the result
    // and its terminator): the change is made in place if it is, else the
    // result is built in a new buffer.
    static void Splice(String& s, unsigned at, unsigned removed, const Unit* text, unsigned n,
                       unsigned room) {
        Buffer copy;
        text = Detached(s, text, n, copy);
        const unsigned size = Text::Size(s.data);
        const unsigned tail = size - at - removed + 1;  // with the terminator
        if (HasPrivateRoom(s, room)) {
            std::memmove(s.data + at + n, s.data + at + removed, tail * sizeof(Unit));
        } else {
            Unit* result = NewBuffer(room);
            std::memcpy(result, s.data, at * sizeof(Unit));
            std::memcpy(result + at + n, s.data + at + removed, tail * sizeof(Unit));
            Adopt(s, result);
        }
        if (n != 0)
            std::memcpy(s.data + at, text, n * sizeof(Unit));
    }

    static void Insert(String& s, int pos, KTWCHAR ch) {
        if (ch == 0)
            return;
        Unit units[2];
        const unsigned n = Text::Encode(ch, units);
        Splice(s, InsertionPoint(s, pos), 0, units, n, Text::Size(s.data) + n + 1);
    }

    static void Insert(String& s, int pos, const Unit* text) {
        if (text == nullptr || *text == 0)
            return;
        const unsigned n = Text::Size(text);
        Splice(s, InsertionPoint(s, pos), 0, text, n, Text::Size(s.data) + n + 1);
    }

    static void Delete(String& s, int pos, int count) {
        const Range range = RangeOf(s, pos, count);
        if (range.size() != 0)
            Splice(s, range.begin, range.size(), nullptr, 0, Text::Size(s.data) + 1);
    }

    static void Replace(String& s, int pos, int count, const Unit* text) {
        const Range range = RangeOf(s, pos, count);
        if (text == nullptr || *text == 0 || range.size() == 0)
            return;
        const unsigned n = Text::Size(text);
        Splice(s, range.begin, range.size(), text, n, Text::Size(s.data) - range.size() + n + 1);
    }

    // `dest` may be `s` itself, or share its buffer: the range is then read
    // from a copy, and a larger buffer of its own is kept.
    static int Extract(const String& s, int pos, int count, String& dest) {
        const Range range = RangeOf(s, pos, count);
        Buffer copy;
        const Unit* part = Detached(dest, s.data + range.begin, range.size(), copy);
        ReallocBuffer(dest, range.size() + 2);
        std::memcpy(dest.data, part, range.size() * sizeof(Unit));
        dest.data[range.size()] = 0;
        return static_cast<int>(range.size());
    }

    // An empty `from` occurs at the start, as strstr finds it.
    static int FindReplace(String& s, const Unit* from, const Unit* to) {
        if (from == nullptr || to == nullptr)
            return 0;
        const unsigned fromSize = Text::Size(from);
        const unsigned toSize = Text::Size(to);
        Buffer fromCopy, toCopy;
        from = Detached(s, from, fromSize, fromCopy);
        to = Detached(s, to, toSize, toCopy);
        ReallocBuffer(s, Text::Size(s.data) + toSize + 1);
        const Unit* found = Text::FindSubstring(s.data, from);
        if (found == nullptr)
            return 0;
        const unsigned at = static_cast<unsigned>(found - s.data);
        Splice(s, at, fromSize, to, toSize, Text::Size(s.data) - fromSize + toSize + 1);
        return 1;
    }

    static int FindReplace(String& s, KTWCHAR from, const Unit* to) {
        Unit units[3] = {};
        Text::Encode(from, units);
        return FindReplace(s, units, to);
    }

    static int FindReplace(String& s, const Unit* from, KTWCHAR to) {
        if (from == nullptr)
            return -1;
        Unit units[3] = {};
        Text::Encode(to, units);
        return FindReplace(s, from, units);
    }

    static int FindReplace(String& s, KTWCHAR from, KTWCHAR to) {
        Unit units[3] = {};
        Text::Encode(to, units);
        return FindReplace(s, from, units);
    }

    static void TrimLeft(String& s) {
        if (IsEmptyString(s.data))
            return;
        const unsigned size = Text::Size(s.data);
        ReallocBuffer(s, size + 2);
        unsigned blanks = 0;
        while (blanks < size && Text::IsSpace(s.data[blanks]))
            ++blanks;
        std::memmove(s.data, s.data + blanks, (size - blanks + 1) * sizeof(Unit));
    }

    static void TrimRight(String& s) {
        const unsigned size = Text::Size(s.data);
        ReallocBuffer(s, size + 2);
        for (Unit* p = const_cast<Unit*>(Text::Previous(s.data, s.data + size));
             p != nullptr && Text::IsSpace(*p); p = const_cast<Unit*>(Text::Previous(s.data, p)))
            *p = 0;
    }

    template <class Change>
    static void ChangeCase(String& s, Change change) {
        if (IsEmptyString(s.data))
            return;
        ReallocBuffer(s, 2 * Text::Size(s.data) + 2);
        change(s.data);
    }

    // ---- Formatting ----

    static int FormatV(const Unit* format, va_list args) {
        const long long estimate = format::Estimate(format, args);
        return estimate < INT_MAX ? static_cast<int>(estimate) : INT_MAX;
    }

    // Prints into the string's own buffer when it is private (locked or not),
    // large enough and holds neither the format nor any text argument; else
    // into a new one that replaces it afterwards, so that text taken from the
    // old buffer (a loaded format, say) is read intact. A private buffer is not shrunk by that: the new one is at
    // least as large. Should the estimate ever fall short, the text is printed
    // again into the room it needs rather than cut.
    static void Format(String& s, const Unit* format, va_list args) {
        if (format == nullptr)
            return;
        format::Region own{s.data, s.data + Capacity(s) + 1};
        const long long estimate = format::Estimate(format, args, &own);
        const unsigned room = static_cast<unsigned>(std::min<long long>(estimate, INT_MAX)) + 1;
        const bool isPrivate = Header(s.data)->refs < 2;
        Unit* target = s.data;
        if (!HasPrivateRoom(s, room) || own.holdsArgument || own.Holds(format))
            target = NewBuffer(isPrivate ? std::max(room, Capacity(s)) : room);
        for (;;) {
            const size_t capacity = static_cast<size_t>(Header(target)->alloc) / sizeof(Unit);
            Header(target)->refs = -1;
            const size_t length = format::Print(target, capacity, format, args);
            Header(target)->refs = 1;
            if (length < capacity)
                break;
            if (target != s.data)
                FreeBuffer(target);
            target = NewBuffer(static_cast<unsigned>(length + 1));
        }
        if (target != s.data)
            Adopt(s, target);
    }

    // The buffer is locked while the system writes into it, and unlocked
    // afterwards, also where it was locked before.
    static int Load(String& s, void* module, unsigned id) {
        for (unsigned capacity = 255;; capacity += 256) {
            Unit* buffer = GetBuffer(s, static_cast<int>(capacity + 1));  // room for capacity + 2
            const int loaded = sys::LoadStringResource(static_cast<HMODULE>(module), id, buffer,
                                                       static_cast<int>(capacity + 1));
            ReleaseBuffer(s);
            if (loaded <= 0)
                return 0;
            if (static_cast<unsigned>(loaded) < capacity)
                return 1;
        }
    }
};

}  // namespace kt
