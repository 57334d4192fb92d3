// The application's test modes: it reads back what it shows and writes it to
// a report file, for a test in another process to compare with the
// dictionary. Not part of the application proper.
#pragma once

// Every string, menu, dialog (by each way of opening one) and message box
// of both modules, with the translation switch on, off and on again, as the
// phases "on", "off" and "again".
int RunProbe(const wchar_t* reportPath);

// Four threads loading strings and menus and opening and closing dialogs for
// `seconds`; each writes what it read first as phase "stress<n>", each item's
// first text that differed from that as phase "odd<n>", and "<n>|iterations"
// as phase "count".
int RunStress(int seconds, const wchar_t* reportPath);
