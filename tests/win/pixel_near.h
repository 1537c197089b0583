#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

// Whether each byte of `pixel` (0xAARRGGBB) is within `tolerance` of the same byte of `expected`:
// scaling, JPEG and presenting move colours a little.
inline ::testing::AssertionResult Near(uint32_t pixel, uint32_t expected, int tolerance) {
    for (int shift = 0; shift <= 24; shift += 8)
        if (std::abs(int(pixel >> shift & 0xFF) - int(expected >> shift & 0xFF)) > tolerance)
            return ::testing::AssertionFailure()
                   << std::hex << pixel << " is not near " << expected;
    return ::testing::AssertionSuccess();
}
