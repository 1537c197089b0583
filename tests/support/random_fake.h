#pragma once

#include <cstdint>

// RandomU32 on the host gives consecutive numbers from the one set here.
void SetNextRandom(uint32_t value);
