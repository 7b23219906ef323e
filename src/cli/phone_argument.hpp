// The phone file named on the command line, read as the window's Open reads it.
#pragma once

#include "image/firmware_image.hpp"

#include <string>

namespace zevran::cli {

// Throws with a message naming the path when the file cannot be read or is empty.
image::ImageState openPhoneFile(const std::string& path);

}  // namespace zevran::cli
