/* Ids of the templates and controls that the tests of the frame run. Plain defines, for the resource compiler. */
#ifndef NVSUPPORT_TESTS_UI_TEST_DIALOG_IDS_H
#define NVSUPPORT_TESTS_UI_TEST_DIALOG_IDS_H

#define IDD_PROBE 201
#define IDD_EMBEDDED 202
#define IDD_HUGE 203
#define IDD_CHOICE 204
#define IDD_NO_TEMPLATE 299
#define IDD_IN_RESOURCE_LIBRARY 5001

#define IDC_EDIT 10
#define IDC_EMPTY_EDIT 11
#define IDC_BOX 12
#define IDC_BUTTON 13
#define IDC_LABEL 14

#endif
