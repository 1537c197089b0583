#include <windows.h>

#include <objbase.h>

#include "platform/win_handles.h"
#include "platform/window_thread_win.h"
#include "session/run_mode.h"
#include "session/saver_session.h"
#include "session/settings_handoff.h"

int32_t RunMode(SaverMode mode, WindowHandle previewParent) {
    if (mode == SaverMode::Settings) {
        OpenSettings(); // no COM, no session, no window of ours
        return 0;
    }
    ComApartment apartment;
    Win32WindowThread thread;
    int32_t result = 0;
    {
        SaverSession session(mode, &thread);
        result = session.Run(mode == SaverMode::Preview ? previewParent : nullptr);
        // COM goes first; the session's destruction then releases the windows with their
        // effects, stops the work queue, frees the photo list and releases the factories.
        apartment.Leave();
    }
    return result;
}
