// rand_s needs this before the first include of stdlib.h.
#define _CRT_RAND_S
#include <stdlib.h>

#include <windows.h>

#include "library/random.h"

uint32_t RandomU32() {
    unsigned int value = 0;
    if (rand_s(&value) == 0) return value;
    return static_cast<uint32_t>(GetTickCount()) * 0x9E3779B1u;
}
