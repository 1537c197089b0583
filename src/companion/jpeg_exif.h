#pragma once

#include <cstdint>
#include <string>

#include "companion/image_header.h"

// What a JPEG's EXIF segment says that the import needs. The import reads it from the file's
// bytes itself, so that a photo turns upright and finds its date the same way on every system:
// the imaging component's metadata reader isn't there everywhere (Wine's is a stub).
struct JpegExif {
    uint32_t orientation = 0; // the orientation tag (274), 1 to 8; 0 when the file doesn't say
    std::string dateTaken;    // DateTimeOriginal (36867), "YYYY:MM:DD HH:MM:SS"; may be empty
};

// Reads the first EXIF segment (APP1 starting "Exif\0\0") before the frame of the JPEG that `read`
// gives. Every offset is checked against the segment, so a damaged one gives what could be read,
// and a file that isn't a JPEG gives nothing.
JpegExif ReadJpegExif(const ReadAt& read);
