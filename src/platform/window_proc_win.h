#pragma once

#include <windows.h>

// The class of every window of a run.
inline constexpr wchar_t kSaverWindowClass[] = L"LumivaneSaver";

// The one window procedure of that class; the window's ScreenWindow lives in GWLP_USERDATA.
LRESULT CALLBACK SaverWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
