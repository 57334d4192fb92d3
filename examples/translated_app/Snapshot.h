// The demo's view of the application: its main dialog shown, saved as a PNG
// picture and its texts printed.
#pragma once

int RunSnapshot(const wchar_t* pngPath);
