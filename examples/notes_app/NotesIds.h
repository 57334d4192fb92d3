// Resource and command numbers of the notes application and its print
// module.
#pragma once

#define IDM_MAIN 100
#define IDM_FILE_NEW 1001
#define IDM_FILE_PRINT 1002
#define IDM_FILE_EXIT 1003
#define IDM_HELP_ABOUT 1004

#define IDD_NOTE 200
#define IDC_NOTE_TITLE 201
#define IDC_NOTE_TEXT 202
#define IDC_NOTE_PINNED 203

#define IDS_APP_TITLE 1
#define IDS_NO_NOTES 2

#define IDD_PRINT 300
#define IDC_PRINT_COPIES 301
#define IDC_PRINT_ALL 302

#define IDS_PRINT_DONE 20
