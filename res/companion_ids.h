// Identifiers of the resources of Lumivane.exe, shared by its resource script and its code.
#pragma once

#define IDI_LUMIVANE 100
#define IDD_SETTINGS 200

#define IDC_APPLY 1001
#define IDC_SCREEN_SAVER_GROUP 1002
#define IDC_SHOW_LABEL 1003
#define IDC_SHOW 1004
#define IDC_PAUSE_LABEL 1005
#define IDC_PAUSE 1006
#define IDC_FIT 1007
#define IDC_SHUFFLE 1008
#define IDC_TITLES 1009
#define IDC_IMPORTED_TITLES 1010
#define IDC_LANGUAGE_LABEL 1011
#define IDC_LANGUAGE 1012
#define IDC_PREVIEW_LABEL 1013
#define IDC_PREVIEW 1014
#define IDC_FOLDERS_GROUP 1015
#define IDC_FOLDERS_NOTE 1016
#define IDC_FOLDERS 1017
#define IDC_ADD 1018
#define IDC_REMOVE 1019
#define IDC_IMPORT 1020
#define IDC_IMPORT_STATUS 1021
#define IDC_BUDGET_LABEL 1022
#define IDC_BUDGET 1023
