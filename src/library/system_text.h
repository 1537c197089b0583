#pragma once

#include <string>

// Text conversions that follow the system's own rules, so that they live in the platform layer.

// `text` lowered character by character by the system's rules.
std::wstring LowerCase(std::wstring text);
// UTF-8 bytes as a wide string, with invalid sequences replaced as the system replaces them.
std::wstring WideFromUtf8(const std::string& text);
