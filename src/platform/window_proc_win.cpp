#include "platform/window_proc_win.h"

#include "session/saver_session.h"
#include "session/window_messages.h"

namespace {

void Paint(HWND hwnd, ScreenWindow& window) {
    PAINTSTRUCT paint{};
    HDC dc = BeginPaint(hwnd, &paint);
    // With a running render target the render loop draws; painting only validates.
    if (!window.target) window.PaintCrossfade(dc);
    EndPaint(hwnd, &paint);
}

} // namespace

LRESULT CALLBACK SaverWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* window = reinterpret_cast<ScreenWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!window) return DefWindowProcW(hwnd, message, wParam, lParam);
    SaverSession& session = *window->session;

    const MessageAction action = DecideMessage(session.mode, message, wParam);
    switch (action) {
    case MessageAction::Default: return DefWindowProcW(hwnd, message, wParam, lParam);
    case MessageAction::DismissThenDefault:
        session.Dismiss();
        return DefWindowProcW(hwnd, message, wParam, lParam);
    case MessageAction::MouseRule: {
        // The cursor's screen position, not the window-relative one of lParam.
        POINT cursor{};
        GetCursorPos(&cursor);
        session.MouseMoved(cursor.x, cursor.y);
        break;
    }
    case MessageAction::Dismiss: session.Dismiss(); break;
    case MessageAction::HideCursor: SetCursor(nullptr); break;
    case MessageAction::PostQuit: PostQuitMessage(0); break;
    case MessageAction::Paint: Paint(hwnd, *window); break;
    case MessageAction::FadeStep: window->FadeStep(); break;
    case MessageAction::DrainQueue: session.queue.Drain(); break;
    case MessageAction::Swallow:
    case MessageAction::SkipErase: break;
    }
    return ActionResult(action);
}
