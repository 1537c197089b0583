#include "platform/companion/saver_preview_win.h"

#include <algorithm>

#include "library/companion.h"
#include "library/settings.h"

namespace {

// The saver reads its options before it makes its window; a saver that hasn't shown one by then
// is stuck or failed, and the stored value goes back regardless.
constexpr ULONGLONG kLendMs = 10000;
constexpr UINT kPollMs = 100;
// How long a closed preview gets to end before it is ended by force.
constexpr ULONGLONG kEndMs = 2000;
constexpr wchar_t kSaverWindowClass[] = L"LumivaneSaver";
// The window that the saver draws into: black, as the pane of the system's settings.
constexpr wchar_t kHostClass[] = L"LumivanePreviewHost";

bool RegisterHostClass() {
    WNDCLASSEXW hostClass{};
    hostClass.cbSize = sizeof hostClass;
    hostClass.lpfnWndProc = DefWindowProcW;
    hostClass.hInstance = GetModuleHandleW(nullptr);
    hostClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    hostClass.lpszClassName = kHostClass;
    return RegisterClassExW(&hostClass) || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

std::vector<BYTE> TextBytes(const std::wstring& text) {
    const auto* first = reinterpret_cast<const BYTE*>(text.c_str());
    return {first, first + (text.size() + 1) * sizeof(wchar_t)};
}

// Waits until `process` has ended, at most `milliseconds`, answering the messages that other
// threads send to ours meanwhile: a closing child window notifies its parent, our window, and
// waits for the answer.
bool WaitForEnd(HANDLE process, ULONGLONG milliseconds) {
    const ULONGLONG deadline = GetTickCount64() + milliseconds;
    for (;;) {
        const ULONGLONG now = GetTickCount64();
        if (now >= deadline) return false;
        const DWORD woken = MsgWaitForMultipleObjects(
            1, &process, FALSE, static_cast<DWORD>(deadline - now), QS_SENDMESSAGE);
        if (woken == WAIT_OBJECT_0) return true;
        if (woken != WAIT_OBJECT_0 + 1) return false;
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

} // namespace

void SaverPreview::Start(HWND ownerWindow, UINT_PTR timer, HWND frame,
                         const std::wstring& saverPath, const std::wstring& show) {
    Stop();
    owner = ownerWindow;
    timerId = timer;
    RECT area{};
    GetClientRect(frame, &area);
    // A new window for every run: the saver ends when the window it draws into is destroyed.
    static const bool registered = RegisterHostClass();
    if (registered)
        host = CreateWindowExW(0, kHostClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0,
                               area.right, area.bottom, frame, nullptr, GetModuleHandleW(nullptr),
                               nullptr);
    const DWORD attributes = GetFileAttributesW(saverPath.c_str());
    if (!host || attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return;

    // Lend the chosen presentation to the store unless the saver would read it there already.
    HKEY key = nullptr;
    if (Settings::ReadString(kValueSaverShow) != show &&
        RegCreateKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, 0,
                        KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        key = nullptr;
    if (key) {
        StoredValue before;
        DWORD size = 0;
        if (RegQueryValueExW(key, kValueSaverShow, nullptr, &before.type, nullptr, &size) ==
            ERROR_SUCCESS) {
            before.data.resize(size);
            before.present = RegQueryValueExW(key, kValueSaverShow, nullptr, &before.type,
                                              before.data.data(), &size) == ERROR_SUCCESS;
            before.data.resize(size);
        }
        const auto lent = TextBytes(show);
        storedShow = std::move(before);
        lentShow = show;
        showLent = RegSetValueExW(key, kValueSaverShow, 0, REG_SZ, lent.data(),
                                  static_cast<DWORD>(lent.size())) == ERROR_SUCCESS;
        RegCloseKey(key);
    }

    std::wstring commandLine =
        L"\"" + saverPath + L"\" /p " + std::to_wstring(reinterpret_cast<UINT_PTR>(host));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(saverPath.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        nullptr, &startup, &started)) {
        PutShowBack();
        return;
    }
    CloseHandle(started.hThread);
    process.Reset(started.hProcess);
    startedAt = GetTickCount64();
    if (showLent) SetTimer(owner, timerId, kPollMs, nullptr);
}

void SaverPreview::Poll() {
    const bool shown = host && FindWindowExW(host, nullptr, kSaverWindowClass, nullptr);
    const bool ended = !process.Valid() || WaitForSingleObject(process.Get(), 0) == WAIT_OBJECT_0;
    if (shown || ended || GetTickCount64() - startedAt > kLendMs) PutShowBack();
}

void SaverPreview::Keep() {
    if (owner && timerId) KillTimer(owner, timerId);
    showLent = false;
}

void SaverPreview::Stop() {
    PutShowBack();
    // The saver's window is closed first, on the saver's own thread, and the saver ends with it.
    // Destroying our window alone would end it too on Windows, but Wine drops a child window of
    // another process without telling that process, whose run would then go on unseen, holding
    // its file; a saver still starting, or stuck, is ended by force.
    HWND saverWindow = host ? FindWindowExW(host, nullptr, kSaverWindowClass, nullptr) : nullptr;
    if (saverWindow && PostMessageW(saverWindow, WM_CLOSE, 0, 0) && process.Valid())
        WaitForEnd(process.Get(), kEndMs);
    if (host) DestroyWindow(host);
    host = nullptr;
    if (process.Valid() && !WaitForEnd(process.Get(), kEndMs)) TerminateProcess(process.Get(), 1);
    process.Reset();
}

void SaverPreview::PutShowBack() {
    if (owner && timerId) KillTimer(owner, timerId);
    if (!showLent) return;
    showLent = false;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, &key) !=
        ERROR_SUCCESS)
        return;
    // Only while the store still holds what was lent: a value written since (the user's Apply, or
    // any other writer) is newer and stays.
    const auto lent = TextBytes(lentShow);
    std::vector<BYTE> now(lent.size() + sizeof(wchar_t));
    DWORD type = 0, size = static_cast<DWORD>(now.size());
    if (RegQueryValueExW(key, kValueSaverShow, nullptr, &type, now.data(), &size) ==
            ERROR_SUCCESS &&
        type == REG_SZ && size == lent.size() &&
        std::equal(lent.begin(), lent.end(), now.begin())) {
        if (storedShow.present)
            RegSetValueExW(key, kValueSaverShow, 0, storedShow.type, storedShow.data.data(),
                           static_cast<DWORD>(storedShow.data.size()));
        else RegDeleteValueW(key, kValueSaverShow);
    }
    RegCloseKey(key);
}
