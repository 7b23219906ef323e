// The phone file named on the command line, read as the window's Open reads it.
#pragma once

#include "cli_args.hpp"
#include "command.hpp"

#include "image/firmware_image.hpp"
#include "image/patch_writer.hpp"
#include "image/phone_document.hpp"

#include <string>
#include <vector>

namespace zevran::cli {

// The phone file opened as the window opens it. Throws with a message naming the path
// when the file cannot be read or is empty.
image::PhoneDocument openPhoneFile(const std::string& path);

// Refuses an output that does not fit the phone file's kind: -o (an S-record patch)
// only for a "bin" file, --in-place only for an "asf" file.
void requireOutputForKind(const Arguments& args, const image::ImageState& state, const std::string& phonePath);

// The single-byte code page of the handset's text: "Code Page" in section "Options" of
// zevran.ini, GBK when it names none.
std::string codePageOf(const Context& context);

// The edits leave the way the command was told, as the window's do: an S-record patch
// file (-o, never over the phone file), or laid into the image and saved over the
// phone file through a temporary file (--in-place).
void writeEdits(const Arguments& args, image::PhoneDocument& document, const std::vector<image::Region>& regions);

}  // namespace zevran::cli
