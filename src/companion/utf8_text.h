#pragma once

#include <string>

// Wide text as UTF-8 bytes, for the files the companion writes itself. A wide string holds
// UTF-16 units on Windows and whole code points where wchar_t is 32 bits wide; both encode the
// same. False, with `out` left as it was, for text that isn't Unicode: a lone half of a surrogate
// pair, or a unit above U+10FFFF. Such text can't come back unchanged from UTF-8.
bool Utf8FromWide(const std::wstring& text, std::string& out);
