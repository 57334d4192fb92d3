// Dialogs and message boxes read back while they are open, then closed:
// modal ones return only when their own message loop has run.
#pragma once

#include <functional>
#include <string>

#include "Report.h"

// Where a dialog's texts go.
struct DialogRead {
    Report* report;
    std::string item;
};

// A modal dialog's procedure; its parameter a DialogRead*. Reads the
// dialog once its loop runs, then ends it.
INT_PTR CALLBACK ReadModalDialog(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Calls `show`, which opens a message box on this thread, and reads the
// box's caption and text as "<item>/caption" and "<item>/text", then
// closes it.
void ReadMessageBox(const std::string& item, Report& report, const std::function<void()>& show);
