// The application's test mode: it opens what its menu commands open,
// the print module among them, and reads back what its live window, menu,
// dialogs and message box show. Not part of the application proper.
#pragma once

// Writes the texts to `reportPath` as Report.h describes, or prints them
// for a person when the path is null. 0, or 1 when the report cannot be
// written or the print module cannot be loaded.
int RunProbe(const wchar_t* reportPath);
