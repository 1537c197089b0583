#include "library/options.h"

int32_t PauseIndex(const std::wstring& value) {
    if (value.size() == 1 && value[0] >= L'0' && value[0] < L'0' + kPauseCount)
        return value[0] - L'0';
    return kDefaultPauseIndex;
}
