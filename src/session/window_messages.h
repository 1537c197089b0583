#pragma once

#include <cstdint>

#include "session/saver_mode.h"

// What the window procedure does with one message, decided without a window system.
enum class MessageAction {
    Default,            // DefWindowProcW and its result
    MouseRule,          // the rule of mouse movement; result 0
    Dismiss,            // SaverSession::Dismiss; result 0
    DismissThenDefault, // Dismiss, then DefWindowProcW and its result
    HideCursor,         // SetCursor(null); result 1
    Swallow,            // nothing; result 0
    PostQuit,           // PostQuitMessage(0); result 0
    Paint,              // BeginPaint, the crossfade's painting without a target, EndPaint; 0
    SkipErase,          // nothing is erased; result 1
    FadeStep,           // the crossfade's next step; result 0
    DrainQueue,         // WorkQueue::Drain on this thread; result 0
};

// The message numbers that the window procedure tells apart.
namespace WindowMessage {
inline constexpr uint32_t Destroy = 0x0002;
inline constexpr uint32_t Paint = 0x000F;
inline constexpr uint32_t EraseBackground = 0x0014;
inline constexpr uint32_t ActivateApp = 0x001C;
inline constexpr uint32_t SetCursor = 0x0020;
inline constexpr uint32_t KeyDown = 0x0100;
inline constexpr uint32_t SysKeyDown = 0x0104;
inline constexpr uint32_t SysCommand = 0x0112;
inline constexpr uint32_t Timer = 0x0113;
inline constexpr uint32_t MouseMove = 0x0200;
inline constexpr uint32_t LeftButtonDown = 0x0201;
inline constexpr uint32_t RightButtonDown = 0x0204;
inline constexpr uint32_t MiddleButtonDown = 0x0207;
inline constexpr uint32_t WorkDone = 0x8001; // WM_APP + 1: the work queue has results
} // namespace WindowMessage

// The identifier of the crossfade's window timer.
inline constexpr uint64_t kFadeTimerId = 2;

MessageAction DecideMessage(SaverMode mode, uint32_t message, uint64_t wParam);

// The result that the window procedure returns for an action that isn't a default one.
intptr_t ActionResult(MessageAction action);
