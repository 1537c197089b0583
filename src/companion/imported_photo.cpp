#include "companion/imported_photo.h"

namespace {

// The number of `count` digits at `at`, or -1.
int Field(const std::string& text, size_t at, size_t count) {
    if (text.size() < at + count) return -1;
    int value = 0;
    for (size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') return -1;
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

bool Separator(const std::string& text, size_t at) {
    return text.size() > at && (text[at] < '0' || text[at] > '9');
}

} // namespace

TakenDate ParseExifDate(const std::string& text) {
    const int year = Field(text, 0, 4), month = Field(text, 5, 2), day = Field(text, 8, 2);
    if (year < 1 || month < 1 || month > 12 || day < 1 || day > 31 || !Separator(text, 4) ||
        !Separator(text, 7)) {
        return {};
    }
    TakenDate date;
    date.year = static_cast<uint16_t>(year);
    date.month = static_cast<uint8_t>(month);
    date.day = static_cast<uint8_t>(day);
    const int hour = Field(text, 11, 2), minute = Field(text, 14, 2), second = Field(text, 17, 2);
    if (Separator(text, 10) && Separator(text, 13) && Separator(text, 16) && hour >= 0 &&
        hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 61) {
        date.hour = static_cast<uint8_t>(hour);
        date.minute = static_cast<uint8_t>(minute);
        date.second = static_cast<uint8_t>(second);
    }
    return date;
}
