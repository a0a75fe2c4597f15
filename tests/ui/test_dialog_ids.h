/* Ids of the templates and controls that the tests run. Plain defines, for the resource compiler. */
#ifndef NVSUPPORT_TESTS_UI_TEST_DIALOG_IDS_H
#define NVSUPPORT_TESTS_UI_TEST_DIALOG_IDS_H

#define IDD_PROBE 201
#define IDD_PLAIN 202
#define IDD_EMBEDDED 203
#define IDD_HUGE 204
#define IDD_UNKNOWN_CONTROL 205
#define IDD_NO_TEMPLATE 299
#define IDD_IN_RESOURCE_LIBRARY 5001

#define IDC_EDIT 10
#define IDC_SECRET 11
#define IDC_TWO_STATES 12
#define IDC_THREE_STATES 13
#define IDC_MANUAL_BOX 14
#define IDC_DISABLED 15
#define IDC_BUTTON 16
#define IDC_LABEL 17

#endif
