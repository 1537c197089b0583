#include "session/command_line.h"

#include <cwchar>

namespace {

// Only the three switch letters matter, and the system's lower-casing maps no letter but their
// capitals onto them, so folding A to Z decides exactly as it does.
wchar_t LowerAscii(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; }

std::wstring SwitchValue(const std::vector<std::wstring>& arguments) {
    const std::wstring& first = arguments[0];
    if (first.size() > 3 && first[2] == L':') return first.substr(3);
    if (arguments.size() > 1) return arguments[1];
    return {};
}

} // namespace

CommandLineChoice ParseCommandLine(const std::vector<std::wstring>& arguments,
                                   const std::function<bool(uint64_t)>& isWindow) {
    CommandLineChoice choice;
    if (arguments.empty() || arguments[0].size() < 2 ||
        (arguments[0][0] != L'/' && arguments[0][0] != L'-')) {
        choice.run = true; // no usable switch opens the settings
        return choice;
    }
    // Letters behind the switch letter are not looked at: /screensaver is /s.
    switch (LowerAscii(arguments[0][1])) {
    case L's': choice.mode = SaverMode::Fullscreen; break;
    case L'p': choice.mode = SaverMode::Preview; break;
    case L'c': choice.mode = SaverMode::Settings; break;
    default: return choice; // any other letter ends at once
    }
    const std::wstring value = SwitchValue(arguments);
    if (choice.mode != SaverMode::Fullscreen && !value.empty()) {
        choice.handle = std::wcstoull(value.c_str(), nullptr, 10);
    }
    if (choice.mode == SaverMode::Preview && (choice.handle == 0 || !isWindow(choice.handle))) {
        return choice;
    }
    if (choice.mode == SaverMode::Settings) choice.handle = 0; // settings use no parent window
    choice.run = true;
    return choice;
}
