#pragma once

#include <windows.h>

namespace e2e {

// Synthetic input through SendInput, the path real devices take, so that it reaches whichever
// window the system routes it to (the foreground one for keys, the one under the cursor for
// the mouse).

// Presses and releases one virtual key.
void PressKey(WORD virtualKey);

enum class MouseButton { Left, Right, Middle };
// Moves the cursor to (x, y) in screen coordinates, then presses and releases `button`.
void Click(MouseButton button, int x, int y);

// Moves the cursor to (x, y) with an absolute move over the virtual desktop; true when the
// cursor really is there afterwards.
bool MoveMouseTo(int x, int y);

POINT CursorPos();

} // namespace e2e
