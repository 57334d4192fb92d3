// Resource ids of the example application and its panel module, shared by
// the resource scripts, the application's code and the test that drives it.
#pragma once

// translated_app.exe
#define IDD_MAIN 100
#define IDC_GREETING 1001
#define IDC_NAME 1002
#define IDC_NOTES 1003
#define IDM_MAIN 200
#define IDM_FILE_PANEL 2001
#define IDM_FILE_EXIT 2002
#define IDM_HELP_ABOUT 2003
// Block 7 of the string table holds ids 96 to 111.
#define IDS_GREETING 100
#define IDS_READY 101

// translated_panel.dll
#define IDD_PANEL 300
#define IDC_PANEL_TEXT 3001
#define IDM_PANEL 400
#define IDM_PANEL_REFRESH 4001
#define IDS_PANEL_TITLE 500

// order_forms.dll, a module that never asks for translation: its dialog is
// handed to the dialog functions as a template, its string loaded by itself.
#define IDD_FORM 600
#define IDS_FORM_NOTE 700
