// The plain GDI path of a run.
//
// Stand-in until the crossfade view lands: the loop only dispatches messages until the quit
// message, and painting fills the window with black, which is what the crossfade paints while
// it has no current photo. The crossfade issue replaces these three bodies.
#include <windows.h>

#include "session/saver_session.h"

int32_t SaverSession::CrossfadeLoop() {
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

void ScreenWindow::FadeStep() {}

void ScreenWindow::PaintCrossfade(void* dc) {
    const RECT area{0, 0, width, height};
    FillRect(static_cast<HDC>(dc), &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}
