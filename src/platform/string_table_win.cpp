#include <windows.h>

#include "diagnostics/string_table.h"

void StringTable::Init() { Init(GetUserDefaultUILanguage()); }
