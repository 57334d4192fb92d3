// What an example application shows, read back from its live windows and
// menus: texts and rectangles by item name, for its test modes and the
// demo. Not part of an application proper.
//
// An item name is "<module file>|<kind>|<resource id>|<detail>", kind one of
// string, notrans, menu, dialog, box; a dialog's detail is "<path>/caption",
// "<path>/text/<position>", "<path>/rect/<position>" ("left top right
// bottom" in client pixels), "<path>/rect/client" and "<path>/units" (the
// dialog's base units, "x y").
#pragma once

#include <windows.h>

#include <cstdio>
#include <map>
#include <string>

using Report = std::map<std::string, std::wstring>;

std::string ModuleFileName(HMODULE module);
std::string ItemName(HMODULE module, const char* kind, unsigned id, const std::string& detail);

// The caption, and each control's text and rectangle by its position.
void ReadDialog(HWND dialog, const std::string& item, Report& report);
// Every item's text, as "<item>/<position>" and deeper "<item>/0.2";
// separators are skipped.
void ReadMenu(HMENU menu, const std::string& item, Report& report);

// One line "<phase>\t<item>\t<text>" for each item, in UTF-16.
void WriteReport(std::FILE* out, const char* phase, const Report& report);
// The texts in UTF-8, for a person, without the geometry.
void PrintReport(std::FILE* out, const Report& report);
