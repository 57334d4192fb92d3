#include "Report.h"

#include <vector>

namespace {

constexpr int kTextCapacity = 512;

std::wstring TextOf(HWND window) {
    wchar_t text[kTextCapacity] = {};
    GetWindowTextW(window, text, kTextCapacity);
    return text;
}

std::wstring RectText(const RECT& rect) {
    return std::to_wstring(rect.left) + L" " + std::to_wstring(rect.top) + L" " + std::to_wstring(rect.right) +
           L" " + std::to_wstring(rect.bottom);
}

std::wstring Wide(const std::string& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

}  // namespace

std::string ModuleFileName(HMODULE module) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(module, path, MAX_PATH);
    const std::string full(path);
    return full.substr(full.find_last_of("\\/") + 1);
}

std::string ItemName(HMODULE module, const char* kind, unsigned id, const std::string& detail) {
    return ModuleFileName(module) + "|" + kind + "|" + std::to_string(id) + "|" + detail;
}

void ReadDialog(HWND dialog, const std::string& item, Report& report) {
    report[item + "/caption"] = TextOf(dialog);
    RECT client;
    GetClientRect(dialog, &client);
    report[item + "/rect/client"] = RectText(client);
    RECT units = {0, 0, 4, 8};
    MapDialogRect(dialog, &units);
    report[item + "/units"] = std::to_wstring(units.right) + L" " + std::to_wstring(units.bottom);
    int position = 0;
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT), ++position) {
        report[item + "/text/" + std::to_string(position)] = TextOf(control);
        RECT rect;
        GetWindowRect(control, &rect);
        MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&rect), 2);
        report[item + "/rect/" + std::to_string(position)] = RectText(rect);
    }
}

namespace {

void ReadMenuLevel(HMENU menu, const std::string& prefix, Report& report) {
    const int count = GetMenuItemCount(menu);
    for (int position = 0; position < count; ++position) {
        if (GetMenuState(menu, position, MF_BYPOSITION) & MF_SEPARATOR)
            continue;
        const std::string path = prefix + std::to_string(position);
        wchar_t text[kTextCapacity] = {};
        GetMenuStringW(menu, position, text, kTextCapacity, MF_BYPOSITION);
        report[path] = text;
        if (HMENU submenu = GetSubMenu(menu, position))
            ReadMenuLevel(submenu, path + ".", report);
    }
}

}  // namespace

void ReadMenu(HMENU menu, const std::string& item, Report& report) { ReadMenuLevel(menu, item + "/", report); }

void WriteReport(std::FILE* out, const char* phase, const Report& report) {
    for (const auto& [item, text] : report) {
        const std::wstring line = Wide(phase) + L"\t" + Wide(item) + L"\t" + text + L"\n";
        std::fwrite(line.data(), sizeof(wchar_t), line.size(), out);
    }
}

void PrintReport(std::FILE* out, const Report& report) {
    for (const auto& [item, text] : report) {
        if (item.find("/rect/") != std::string::npos || item.find("/units") != std::string::npos)
            continue;
        const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
        std::vector<char> utf8(size);
        WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, utf8.data(), size, nullptr, nullptr);
        std::fprintf(out, "   %-48s %s\n", item.c_str(), utf8.data());
    }
}
