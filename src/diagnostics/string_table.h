#pragma once

#include <string>

// Texts in the language of the process.
//
// Stand-in until the localised strings land: Init chooses nothing and Get gives the English key
// itself, the answer for a language without a table. A later issue replaces the bodies.
struct StringTable {
    static void Init();
    static std::wstring Get(const std::wstring& key);
};
