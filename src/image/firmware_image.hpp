// The opened phone file held whole in memory, and the search position that every
// search of the image shares. One ImageState lives for the whole run; every tab
// reads it and changes its bytes only through CopyToImage.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::image {

struct ImageState {
    std::vector<std::uint8_t> FirmwareImage;  // the phone file exactly as read
    std::int32_t FirmwareLength = 0;
    std::string FirmwarePath;
    std::string FileKind;  // "bin", "asf", "other", or "" before the first open
    bool ImageLoaded = false;

    std::vector<std::uint8_t> SearchPattern;  // bytes of the last hex search
    std::int32_t LastMatch = 0;               // index of the last hit; 0 means none
    std::int32_t SearchStart = 0;             // where the last search began, or its hit
};

// Finds the next occurrence of a hex pattern after LastMatch. On a hit, SearchStart
// and LastMatch hold its index; on a miss LastMatch returns to 0, so the next call
// wraps round. The scan starts at LastMatch + 1: a pattern at index 0 is never found.
// A pattern text with a non-hex character is not found.
bool FindHexInImage(ImageState& state, std::string_view hexText);

// Copies count bytes of source into the image at offset. Stops at the image's end
// (or at a negative index) and returns false; bytes copied before then stay.
bool CopyToImage(ImageState& state, std::span<const std::uint8_t> source, std::int32_t offset, std::int32_t count);

// Size of the chunk whose 4-byte tag stands at offset: its big-endian 32-bit body
// length at offset + 4 plus the 8 bytes of tag and length. Computed in 64 bits so a
// length near 4 GiB stays exact. Throws std::out_of_range when the length field lies
// outside the image.
std::int64_t ChunkSizeAt(const ImageState& state, std::int64_t offset);
// The same over any bytes whose first is offset 0.
std::int64_t ChunkSizeAt(std::span<const std::uint8_t> bytes, std::int64_t offset);

// Offsets are signed 32-bit numbers: a phone file of 2 GiB or more cannot be held as an
// image. Throws std::length_error naming the file.
void checkImageSize(const std::string& path, std::uintmax_t bytes);

// Replaces the image and path with a freshly read phone file; the kind is left to
// the caller. Clears nothing else.
void setImage(ImageState& state, std::string path, std::vector<std::uint8_t> bytes);

}  // namespace zevran::image
