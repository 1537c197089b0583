#pragma once

#include <cstdint>
#include <memory>

#include "companion/pixel_image.h"

// The filter that a downscale weighs pixels with. Its window widens with the reduction, so that
// every source pixel counts and fine detail averages out instead of turning into false patterns.
enum class ResampleKernel : int32_t {
    CatmullRom, // a cubic of radius 2: sharp and cheap
    Lanczos3,   // a windowed sinc of radius 3: the least aliasing of the two
};

// Shrinks a picture while its rows arrive, top to bottom: the whole source never has to be in
// memory. What it holds is the destination, the last few source rows and the tables of weights.
// It filters down first, as soon as the rows under a destination row are in, and then across:
// the long source rows go through the pass that runs along whole rows at once.
class Downscaler {
public:
    // Prepares the reduction of `source` to `destination`, pixels of `channels` (1 to 4) bytes.
    // False when a side is 0, a side of the destination exceeds the source's, or memory is short.
    bool Start(ImageSize source, ImageSize destination, uint32_t channels,
               ResampleKernel kernel = ResampleKernel::Lanczos3);
    // Takes the source's next row, source.width * channels bytes. Rows past the last are ignored.
    void AddRow(const uint8_t* row);
    // The destination; complete once every row of the source went in.
    PixelImage& Output() { return output; }

private:
    // One direction of the reduction: destination pixel i weighs `taps` source pixels from
    // first[i] on, with weights in fixed point that add up to exactly one.
    struct Axis {
        uint32_t taps = 0;
        std::unique_ptr<uint32_t[]> first;
        std::unique_ptr<int16_t[]> weights;
        bool Plan(uint32_t source, uint32_t destination, ResampleKernel kernel);
    };

    void EmitRow(uint32_t y);

    ImageSize source;
    uint32_t channels = 0;
    Axis across, down;
    uint32_t rowsIn = 0;               // source rows taken
    uint32_t rowsOut = 0;              // destination rows done
    std::unique_ptr<uint8_t[]> window; // the last `down.taps` source rows, a ring
    std::unique_ptr<int32_t[]> sums;   // one source-wide row being summed down
    std::unique_ptr<uint8_t[]> column; // that row, filtered down
    PixelImage output;
};

// Shrinks a whole picture in memory into `result`; false as Downscaler::Start.
bool Downscale(const PixelImage& source, ImageSize destination, PixelImage& result,
               ResampleKernel kernel = ResampleKernel::Lanczos3);
