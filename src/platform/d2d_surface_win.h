#pragma once

#include <windows.h>

#include <d2d1.h>
#include <dwrite.h>
#include <wrl/client.h>

#include <cstdint>
#include <memory>

#include "effects/drawing_surface.h"

// The run's factory pair. Declared in this order so that DirectWrite is released before
// Direct2D.
struct DrawingFactories {
    Microsoft::WRL::ComPtr<ID2D1Factory> d2dFactory;
    Microsoft::WRL::ComPtr<IDWriteFactory> dwriteFactory;
};

// Loads d2d1.dll and dwrite.dll from the system folder (never freed) and makes the factory pair
// into `pair`; false when either library, entry point or factory is missing.
bool LoadDrawingFactories(std::shared_ptr<DrawingFactories>& pair);

// A window render target of `width` x `height` pixels at 96 DPI, B8G8R8A8 with alpha ignored,
// presenting with the display's refresh when `primary` and immediately otherwise; null on
// failure.
std::unique_ptr<DrawingSurface> CreateHwndSurface(const DrawingFactories& factories, HWND hwnd,
                                                  int32_t width, int32_t height, bool primary);
