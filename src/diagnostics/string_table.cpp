#include "diagnostics/string_table.h"

void StringTable::Init() {}

std::wstring StringTable::Get(const std::wstring& key) { return key; }
