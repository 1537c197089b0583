#include "session/window_messages.h"

namespace {

constexpr uint64_t kScreenSaveCommand = 0xF140; // SC_SCREENSAVE

MessageAction Fullscreen(uint32_t message, uint64_t wParam) {
    switch (message) {
    case WindowMessage::MouseMove: return MessageAction::MouseRule;
    case WindowMessage::LeftButtonDown:
    case WindowMessage::RightButtonDown:
    case WindowMessage::MiddleButtonDown:
    case WindowMessage::KeyDown:
    case WindowMessage::SysKeyDown: return MessageAction::Dismiss;
    case WindowMessage::ActivateApp:
        return wParam == 0 ? MessageAction::DismissThenDefault : MessageAction::Default;
    case WindowMessage::SetCursor: return MessageAction::HideCursor;
    case WindowMessage::SysCommand:
        // A request to start a screen saver while this one runs is swallowed.
        return (wParam & 0xFFF0) == kScreenSaveCommand ? MessageAction::Swallow
                                                       : MessageAction::Default;
    case WindowMessage::Destroy: return MessageAction::Swallow;
    default: return MessageAction::Default;
    }
}

MessageAction Preview(uint32_t message) {
    switch (message) {
    case WindowMessage::MouseMove:
    case WindowMessage::LeftButtonDown:
    case WindowMessage::RightButtonDown:
    case WindowMessage::MiddleButtonDown:
    case WindowMessage::KeyDown:
    case WindowMessage::SysKeyDown: return MessageAction::Swallow;
    // The pane going away is the only end of a preview.
    case WindowMessage::Destroy: return MessageAction::PostQuit;
    default: return MessageAction::Default;
    }
}

} // namespace

MessageAction DecideMessage(SaverMode mode, uint32_t message, uint64_t wParam) {
    // Messages that both modes handle alike.
    switch (message) {
    case WindowMessage::Paint: return MessageAction::Paint;
    case WindowMessage::EraseBackground: return MessageAction::SkipErase;
    case WindowMessage::Timer:
        return wParam == kFadeTimerId ? MessageAction::FadeStep : MessageAction::Swallow;
    case WindowMessage::WorkDone: return MessageAction::DrainQueue;
    default: break;
    }
    return mode == SaverMode::Preview ? Preview(message) : Fullscreen(message, wParam);
}

intptr_t ActionResult(MessageAction action) {
    switch (action) {
    case MessageAction::HideCursor:
    case MessageAction::SkipErase: return 1;
    default: return 0;
    }
}
