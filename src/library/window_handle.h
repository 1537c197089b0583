#pragma once

// A window handle as the logic carries it: an opaque value that only the platform layer opens.
// It sits at the bottom so that the work queue can name a window without knowing the session.
using WindowHandle = void*;
