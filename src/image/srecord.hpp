// Motorola S-record text with 32-bit addresses: the form in which every patch and
// converted file leaves the workshop. Lines end in CR LF; data lines are S3 records
// of 16 bytes, framed by a fixed S0 header and a fixed S7 trailer.
#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <string_view>

namespace zevran::image {

// Header: count 06, address 0000, data "HDR", checksum 1B.
inline constexpr std::string_view S0Line = "S00600004844521B\r\n";
// A full data line: S3 with count 0x15 (4 address + 16 data + 1 checksum bytes).
inline constexpr std::string_view S3Prefix = "S315";
// Trailer: start address A0020000, the handset's fixed entry point.
inline constexpr std::string_view S7Line = "S705A002000058\r\n";

// Appends the S3 lines of one region, whose first byte lies at `first`: full lines
// of 16 bytes, then one last line of the remaining 1 to 16 bytes. Feeding a region
// in pieces whose sizes are multiples of 16 gives the same lines as feeding it whole.
// An empty span appends nothing.
void appendSRecordLines(std::string& out, std::span<const std::uint8_t> data, std::uint32_t first);

// The S3 lines of one region (without header and trailer).
std::string sRecordRegionText(std::span<const std::uint8_t> data, std::uint32_t first);

// The patch file that WriteSRecordRegion keeps open between the calls for one file.
struct PatchFile {
    std::ofstream stream;
    std::string path;
};

// Writes one region (last inclusive) of a patch file. The first region's call opens
// (and truncates) `path` and writes the S0 line; the last region's call writes the S7
// line and closes the file, and then returns true so the caller can say it is done.
// Throws FileError when the file cannot be created or written, and
// std::invalid_argument for a region whose data is shorter than the region or whose
// last address lies before its first; nothing of that region is written then.
bool WriteSRecordRegion(PatchFile& file, std::span<const std::uint8_t> data, std::int32_t first, std::int32_t last,
                        const std::string& path, bool openFile, bool closeFile);

}  // namespace zevran::image
