/* Ids of the dialog templates and their controls, for the resource script and the dialogs' sources alike. Plain
   defines, because resource compilers read nothing else. OK and Cancel are IDOK and IDCANCEL. */
#ifndef NVSUPPORT_RESOURCES_RESOURCE_IDS_H
#define NVSUPPORT_RESOURCES_RESOURCE_IDS_H

#define IDD_CREATE_ACCOUNT 101
#define IDD_SIGN_IN 102
#define IDD_COMPUTER_NAME 104

#define IDC_USER_ID 1001
#define IDC_PASSWORD 1003
#define IDC_RETYPE_PASSWORD 1005
#define IDC_YOUR_NAME 1007
#define IDC_COMPANY 1009
#define IDC_EMAIL 1012
#define IDC_KEEP_INFORMED 1014
#define IDC_COMPUTER_NAME 1016
#define IDC_ACCEPT_POLICY 1019
#define IDC_CREATE_ACCOUNT 1020
#define IDC_SAVE_PASSWORD 1021
#define IDC_FORGOT 1029
#define IDC_VIEW_POLICY 1030
#define IDC_HELP_PAGE 1041

#endif
