// Every edit ends as regions of new bytes. A "bin" phone file is never written: its
// regions leave as an S-record patch file. An "asf" image takes them in memory and
// is saved back whole over its phone file.
#pragma once

#include "firmware_image.hpp"

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace zevran::image {

struct Region {
    std::int32_t first = 0;
    std::int32_t last = 0;  // inclusive
    std::vector<std::uint8_t> bytes;
};

// Writes the regions, in the order given, into one patch file: one S0 line, the S3
// lines of each region, one S7 line. Throws FileError or std::invalid_argument
// (a region shorter than its range) as WriteSRecordRegion does. No regions: no file.
void writeSRecordPatch(const std::string& path, const std::vector<Region>& regions);

// Copies every region's bytes into the image at its first address, later regions
// over earlier ones. Returns false when a region reached past the image's end; the
// bytes before that point stay patched.
bool patchImage(ImageState& state, const std::vector<Region>& regions);

// What a record reaching past the image's end does.
enum class PatchGrowth {
    Refuse,      // the image keeps its length, as the handset's memory does
    GrowWithFF,  // the image grows to hold it, a gap before it reading FF as erased flash
};

// Images stay below 2 GiB (offsets are signed 32-bit): no record grows one further.
inline constexpr std::uint64_t kLargestGrownImage = 0x7FFFFFFF;

// Lays every data record of an S-record patch over the image, as flashing it over the
// handset's memory would, reading any record type strictly (checksums included).
// Throws SRecordError naming the line of a bad record, or of one that reaches past the
// image's end (Refuse) or past kLargestGrownImage bytes (GrowWithFF); the records
// before it are laid over already.
void applySRecordPatch(std::vector<std::uint8_t>& image, std::istream& patch, PatchGrowth growth = PatchGrowth::Refuse);

// Writes the whole image back over its phone file through a temporary file, so the
// phone file is either the old one or the new one, never a mix. A phone file whose
// length differs from the image's is not the one it was read from: FileError.
void Saveaxf(const ImageState& state);

}  // namespace zevran::image
