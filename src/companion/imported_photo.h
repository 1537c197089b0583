#pragma once

#include <cstdint>
#include <string>

#include "photos/image_decoder.h"

// When a photo was taken, as its camera's clock showed it (local time, no zone); year 0 when the
// file doesn't say.
struct TakenDate {
    uint16_t year = 0;
    uint8_t month = 0; // 1 to 12 when known
    uint8_t day = 0;
    uint8_t hour = 0;
    uint8_t minute = 0;
    uint8_t second = 0;

    bool Known() const { return year != 0; }
};

// What an import learned about one photo and the copy it wrote.
struct ImportedPhotoInfo {
    ImageSize upright;         // the source's size, its orientation applied
    ImageSize written;         // the copy's size
    uint64_t writtenBytes = 0; // the copy's file size
    TakenDate taken;
};

// Reads the camera's date text, "YYYY:MM:DD HH:MM:SS" (any single non-digit between the fields);
// a date without a time is taken at midnight. Unknown for anything else, such as the
// "0000:00:00 00:00:00" or the blanks of a camera whose clock was never set.
TakenDate ParseExifDate(const std::string& text);
