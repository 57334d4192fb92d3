// File-name operations on both string widths: pure text work, the file
// system is never asked. Directories are delimited by '\', '/' and ':'; the
// extension is what follows the last '.' behind them.
#pragma once

#include "strings/StringOps.h"

namespace kt {

template <class String, class Text>
struct PathOps {
    using Unit = typename Text::Unit;
    using Ops = StringOps<String, Text>;

    static constexpr Unit kPathDelimiters[] = {':', '\\', '/', 0};
    static constexpr Unit kExtensionDelimiters[] = {':', '\\', '/', '.', 0};
    static constexpr Unit kEllipsis[] = {'.', '.', '.', '\\', 0};
    static constexpr Unit kNoText[] = {0};
    static constexpr int kEllipsisLength = 4;

    static const Unit* LastOf(const String& s, const Unit* set) {
        return Text::FindLastOneOf(s.data, set);
    }

    static unsigned CopyOut(const Unit* begin, const Unit* end, Unit* dest) {
        const unsigned size = static_cast<unsigned>(end - begin);
        if (dest != nullptr) {
            std::memcpy(dest, begin, size * sizeof(Unit));
            dest[size] = 0;
        }
        return size;
    }

    static const Unit* FileName(const String& s) {
        const Unit* delimiter = LastOf(s, kPathDelimiters);
        return delimiter != nullptr ? delimiter + 1 : s.data;
    }

    // The name without its extension.
    static int FileName(const String& s, Unit* dest) {
        const Unit* name = FileName(s);
        const Unit* dot = LastOf(s, kExtensionDelimiters);
        const Unit* end = dot != nullptr && *dot == '.' ? dot : name + Text::Size(name);
        return static_cast<int>(CopyOut(name, end, dest));
    }

    static const Unit* FileExt(const String& s) {
        const Unit* dot = LastOf(s, kExtensionDelimiters);
        return dot != nullptr && *dot == '.' ? dot + 1 : nullptr;
    }

    static int FileExt(const String& s, Unit* dest) {
        const Unit* ext = FileExt(s);
        if (ext == nullptr) {
            if (dest != nullptr)
                *dest = 0;
            return 0;
        }
        return static_cast<int>(CopyOut(ext, ext + Text::Size(ext), dest));
    }

    // The directory; a colon stays on it, a backslash or slash goes.
    static int FilePath(const String& s, Unit* dest) {
        const Unit* delimiter = LastOf(s, kPathDelimiters);
        if (delimiter == nullptr)
            return 0;
        return static_cast<int>(
            CopyOut(s.data, *delimiter == ':' ? delimiter + 1 : delimiter, dest));
    }

    static String FilePath(const String& s) {
        String path;
        const int size = FilePath(s, nullptr);
        if (size != 0)
            Ops::AssignCopy(path, s.data, static_cast<unsigned>(size));
        return path;
    }

    static void ChangeFileExt(String& s, const Unit* ext) {
        if (ext == nullptr)
            ext = kNoText;
        if (*ext == '.')
            ++ext;
        typename Ops::Buffer copy;  // an extension from the string itself must outlive the dot
        ext = Ops::Detached(s, ext, Text::Size(ext), copy);
        const Unit* old = FileExt(s);
        if (old != nullptr) {
            Ops::ConcatCopyTo(s, static_cast<unsigned>(old - s.data), ext, Text::Size(ext));
        } else {
            AddDelimiter(s, '.', '.');
            Ops::ConcatCopy(s, ext, Text::Size(ext));
        }
    }

    // Appends `delimiter` unless the text ends in it or in `alternative`.
    static void AddDelimiter(String& s, Unit delimiter, Unit alternative) {
        const Unit* last = Text::Previous(s.data, s.data + Text::Size(s.data));
        if (last != nullptr && (Text::CodeAt(last) == KTWCHAR(delimiter) ||
                                Text::CodeAt(last) == KTWCHAR(alternative)))
            return;
        Ops::ConcatCopy(s, &delimiter, 1);
    }

    // Shortens a path for display to about `maxLen` characters by putting the
    // ellipsis in the place of whole directories from its middle. The root,
    // the first directory where there are several, and the last component
    // stay. Only a backslash delimits here.
    static int ReducePathString(String& s, int maxLen) {
        const int length = static_cast<int>(Text::Length(s.data));
        if (maxLen >= length)
            return 1;
        int root;
        if (Ops::GetAt(s, 1) == ':' && Ops::GetAt(s, 2) == '\\') {
            root = 2;
        } else if (Ops::GetAt(s, 0) == '\\' && Ops::GetAt(s, 1) == '\\') {
            root = Ops::Find(s, KTWCHAR('\\'), 2);  // behind the server name
            if (root < 0)
                return 0;
        } else {
            return 0;
        }
        const int last = Ops::FindRev(s, '\\');
        if (last < 0 || root >= last)
            return 1;
        const int tail = length - last;
        const int second = Ops::Find(s, KTWCHAR('\\'), root + 1);
        const int start = second < last ? second : root;
        // A last component too long for maxLen is kept whole.
        const int limit = kEllipsisLength + tail + 1 > maxLen ? kEllipsisLength + tail + 5 : maxLen;

        String copy(s);
        for (;;) {
            const int p = Ops::Find(copy, KTWCHAR('\\'), start + 1);
            if (p < 0)
                break;
            Ops::Delete(copy, start, p - start);
            if (static_cast<int>(Text::Length(copy.data)) + kEllipsisLength <= limit || p >= last)
                break;
        }
        Ops::Insert(copy, start + 1, kEllipsis);
        Ops::Assign(s, copy);
        return 1;
    }
};

}  // namespace kt
