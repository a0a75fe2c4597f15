/* The style values and ids that resource scripts use, so that both resource compilers manage without any system's
   headers. Included by .rc files only. */
#ifndef NVSUPPORT_RESOURCES_SCRIPT_CONSTANTS_H
#define NVSUPPORT_RESOURCES_SCRIPT_CONSTANTS_H

#define WS_POPUP 0x80000000
#define WS_CHILD 0x40000000
#define WS_DISABLED 0x08000000
#define WS_CAPTION 0x00C00000
#define WS_SYSMENU 0x00080000
#define WS_TABSTOP 0x00010000

#define DS_SETFONT 0x40
#define DS_MODALFRAME 0x80

#define ES_PASSWORD 0x20
#define ES_AUTOHSCROLL 0x80

#define IDOK 1
#define IDCANCEL 2
#define IDC_STATIC 0xFFFF

#endif
