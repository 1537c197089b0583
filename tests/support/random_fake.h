#pragma once

#include <cstdint>
#include <vector>

// RandomU32 on the host gives consecutive numbers from the one set here.
void SetNextRandom(uint32_t value);
// RandomU32 gives `values` first, in order, and then goes on counting.
void ScriptRandoms(std::vector<uint32_t> values);
// How many numbers RandomU32 has given so far.
uint32_t RandomDrawCount();
