// A picture file (BMP of any depth, PNG, and whatever else Qt's image readers know)
// read through QImage into the plain grid that the picture import encodes. The only
// file of the picture logic that uses Qt; its header stays free of it.
#pragma once

#include "image/failure.hpp"

#include "picture_encode.hpp"
#include "pixel_decode.hpp"

#include <stdexcept>
#include <string>

namespace zevran::pictures {

// A file that is missing, no regular file, or no picture Qt can read; the message
// names the path and the cause.
class PictureFileError : public image::WorkshopError {
public:
    using TypedError::TypedError;
};

// The picture's pixels, alpha ignored. A 4-bit indexed picture (16 colours) whose
// colour table equals `colours`, the table of "16.dat", also gives its indices, so
// a picture exported at depth 4 comes back index for index even where the table
// repeats a colour.
PictureGrid readPictureFile(const std::string& path, const ColourTable& colours);

}  // namespace zevran::pictures
