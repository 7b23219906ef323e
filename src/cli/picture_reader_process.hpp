// Pictures for import-picture, read by zevran-picture-reader in a process of its own:
// only that small program loads Qt's image readers, so zevran-cli links no Qt library.
#pragma once

#include "pictures/picture_encode.hpp"
#include "pictures/pixel_decode.hpp"

#include <string>

namespace zevran::cli {

// Where zevran-picture-reader is: beside this executable (the build folder, a portable
// folder), else in the installed layout's libexec folder. "" when it is in neither.
std::string pictureReaderPath();

// The picture's pixels as picture_file reads them. Throws pictures::PictureFileError
// with the reader's own reason for a picture it cannot read, and for a reader that
// cannot be found or run.
pictures::PictureGrid readPictureThroughReader(const std::string& path, const pictures::ColourTable& colours);

}  // namespace zevran::cli
