// The phone file named on the command line, read as the window's Open reads it.
#pragma once

#include "cli_args.hpp"

#include "image/firmware_image.hpp"
#include "image/patch_writer.hpp"

#include <string>
#include <vector>

namespace zevran::cli {

// Throws with a message naming the path when the file cannot be read or is empty.
image::ImageState openPhoneFile(const std::string& path);

// The edits leave the way the command was told: an S-record patch file (-o), or laid
// into the image and saved over the phone file through a temporary file (--in-place).
void writeEdits(const Arguments& args, image::ImageState& state, const std::vector<image::Region>& regions);

}  // namespace zevran::cli
