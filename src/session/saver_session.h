#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "effects/drawing_surface.h"
#include "effects/effect.h"
#include "library/options.h"
#include "photos/photo_source.h"
#include "photos/work_queue.h"
#include "session/saver_mode.h"
#include "session/window_thread.h"

struct SaverSession;

// One monitor's window (or the one child window of a preview pane) with all that draws into it.
// The fields are declared in the order in which they are set up, so that destruction runs the
// other way round: effect, source, layer, target, the captions, then the back, next and current
// bitmaps. Destruction doesn't destroy the window itself; it ends with the process.
struct ScreenWindow {
    ScreenWindow(SaverSession* owner, uint64_t startCursor, int32_t pixelWidth,
                 int32_t pixelHeight);
    ScreenWindow(const ScreenWindow&) = delete;
    ScreenWindow& operator=(const ScreenWindow&) = delete;

    // Makes the window's render target and its layer, replacing any old ones; false leaves the
    // window without a target.
    bool CreateTarget();
    // Crossfade: the next tick of a fade (timer 2), and the painting of the window by GDI.
    void FadeStep();
    void PaintCrossfade(void* dc);
    // Loads the photo at `cursor` into `bitmap` (the current or the next one) and its caption into
    // `caption`. A photo that fails has used its turn: the next is tried, up to 10 photos and at
    // most each photo once. False when none could be loaded; the pair is then as it was.
    bool LoadNext(PlatformObject& bitmap, std::wstring& caption);
    // At a period tick: a still window of a list of 2 or more photos loads the next one and starts
    // fading (fadeStep 1); true when it did, and the fade's timer is then to be started.
    bool StartFade();
    // One tick of a fade; after the last, the next photo and caption become the current ones and
    // the window is still again. True when the fade has ended and its timer is to be stopped.
    bool AdvanceFade();
    // The text under the photo: the current caption up to step 50 of a fade, the next one from
    // step 51 on; with no photos at all, the message that says so, in the user's language.
    std::wstring CrossfadeCaption() const;

    SaverSession* session;
    WindowHandle hwnd = nullptr;
    int32_t width;
    int32_t height;
    uint64_t cursor; // next index into the photos; folded by the list's size when used
    PlatformObject currentBitmap{nullptr, nullptr};
    PlatformObject nextBitmap{nullptr, nullptr};
    PlatformObject backBitmap{nullptr, nullptr};
    std::wstring currentCaption;
    std::wstring nextCaption;
    int32_t fadeStep = 0;
    const DrawingFactories* factories = nullptr;
    bool primary = false;
    float scale = 1.0f; // pixels per design unit
    std::unique_ptr<DrawingSurface> target;
    std::unique_ptr<SurfaceLayer> layer;
    std::unique_ptr<PhotoSource> source;
    std::unique_ptr<Effect> effect;
};

// One run of the slideshow over all monitors or inside a preview pane. The fields are declared so
// that destruction takes the run down in its fixed order: the windows, then the work queue, then
// the photo list, then the factory pair.
struct SaverSession {
    explicit SaverSession(SaverMode runMode, WindowThread* windowThread = nullptr);
    SaverSession(const SaverSession&) = delete;
    SaverSession& operator=(const SaverSession&) = delete;

    // Opens the windows and runs one of the two loops to its end: 0 for a run that ended
    // normally, 1 when no window could be opened.
    int32_t Run(WindowHandle previewParent);
    // The Direct2D path's loop; 0 when it sees the quit message.
    int32_t RenderLoop();
    // The plain GDI path's loop; 0 when it sees the quit message.
    int32_t CrossfadeLoop();
    // Hides every window at once and posts the quit message; later calls do nothing.
    void Dismiss();
    // The mouse rule of the full screen, with the cursor position in screen coordinates.
    void MouseMoved(int32_t x, int32_t y);

    // Reads SaverFit, SaverTitle and SaverImportedTitle into the flags, and gives the effect kind
    // and options of the run.
    struct RunOptions {
        EffectKind kind = EffectKind::Fader;
        EffectOptions effectOptions;
    };
    RunOptions ReadOptions();

    // Makes one ScreenWindow per rectangle, each starting `share` photos after the one before;
    // `open` creates the real window and says whether that worked. A window that fails is lost,
    // but still counts for the start index of the next.
    struct Rectangle {
        int32_t left = 0, top = 0, right = 0, bottom = 0;
    };
    using WindowOpener = std::function<bool(ScreenWindow& window, const Rectangle& rectangle)>;
    void OpenWindows(const std::vector<Rectangle>& rectangles, const WindowOpener& open);
    // Gives every window its scale, render target, PhotoSource and effect, after starting the
    // work queue. If one target can't be made, every window goes back to the crossfade and the
    // result is false.
    bool StartDirect2D(const RunOptions& options);

    SaverMode mode;
    bool fit = false;
    bool title = true;
    bool importedTitle = true;
    std::shared_ptr<DrawingFactories> factories; // Direct2D, then DirectWrite
    bool dismissed = false;
    std::vector<std::wstring> photos; // full paths in showing order
    WorkQueue queue;
    std::vector<std::unique_ptr<ScreenWindow>> windows;
    int32_t mouseX = 0;
    int32_t mouseY = 0;
    bool mouseSeen = false;
    WindowThread* thread; // the window thread's services
};

// The photo list of a run: the first folder's photos, or the second's when the first has none.
using PhotoLister = std::function<std::vector<std::wstring>(const std::wstring& folder)>;
std::vector<std::wstring> ChoosePhotos(const PhotoLister& list, const std::wstring& first,
                                       const std::wstring& second);

// Puts the list in showing order: shuffled from the top when `randomFlag` isn't 0, otherwise a
// stable sort by file name.
void OrderPhotos(std::vector<std::wstring>& photos, int32_t randomFlag,
                 const std::function<uint32_t()>& random);

// How far apart the windows start in the photo list.
uint64_t PhotoShare(size_t photoCount, size_t rectangleCount);

// Pixels per design unit: DPI / 96, and in a preview pane also shrunk by pane height over
// screen height.
float WindowScale(SaverMode mode, uint32_t dpi, int32_t height, int32_t screenHeight);
