// The host tests' source of "random" numbers: a counter that tests can set and read, so that a
// test knows how many numbers the code under test drew and which.
#include "support/random_fake.h"

#include "session/random.h"

namespace {
uint32_t nextValue = 0;
uint32_t drawn = 0;
} // namespace

uint32_t RandomU32() {
    ++drawn;
    return nextValue++;
}

void SetNextRandom(uint32_t value) { nextValue = value; }

uint32_t RandomDrawCount() { return drawn; }
