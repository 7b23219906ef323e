// The byte ranges of the rows the tabs list, as owners of the bytes they cover: each
// found tone from its first to its last byte, each frame of a picture row, each slot of
// the string edit list. Rows whose cells do not read as a range own nothing.
#pragma once

#include "image/byte_owners.hpp"
#include "pictures/picture_table.hpp"
#include "strings/string_edit.hpp"
#include "tones/tone_scan.hpp"

#include <span>
#include <vector>

namespace zevran::bytes {

// A picture row of more frames than this is a typing error: its first frames own bytes.
inline constexpr std::int64_t kMostOwnedFrames = 32767;

std::vector<image::ByteOwner> toneOwners(std::span<const tones::ToneSlot> rows);
std::vector<image::ByteOwner> pictureOwners(std::span<const pictures::PictureEntry> rows);
std::vector<image::ByteOwner> editRowOwners(std::span<const strings::StringEditRow> rows);

}  // namespace zevran::bytes
