#pragma once

#include <cstdint>

// 32 random bits from the system's generator, or, if that fails, the tick count times
// 0x9E3779B1. It feeds the shuffle, the choice of a random effect and the crash identifiers.
uint32_t RandomU32();
