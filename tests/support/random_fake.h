#pragma once

#include <cstdint>

// RandomU32 on the host gives consecutive numbers from the one set here.
void SetNextRandom(uint32_t value);
// How many numbers RandomU32 has given so far.
uint32_t RandomDrawCount();
