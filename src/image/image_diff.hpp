// Two images compared: where the second differs from the first, as regions of
// addresses, and the S-record patch that turns the first into the second.
#pragma once

#include "patch_writer.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::image {

// A range of addresses, both ends inclusive.
struct DiffRange {
    std::int32_t first = 0;
    std::int32_t last = 0;

    std::int64_t size() const { return std::int64_t{last} - first + 1; }
    friend bool operator==(const DiffRange&, const DiffRange&) = default;
};

// The second image is shorter than the first: a patch only overwrites bytes, so it
// can never take bytes away from an image.
class ShorterImage : public std::runtime_error {
public:
    ShorterImage(std::size_t olderLength, std::size_t newerLength);
    std::size_t olderLength() const { return m_olderLength; }
    std::size_t newerLength() const { return m_newerLength; }

private:
    std::size_t m_olderLength;
    std::size_t m_newerLength;
};

// The regions where `newer` differs from `older`, in address order. Over the common
// length they are the maximal runs of differing bytes; the bytes of `newer` past the
// end of `older` count as differing, so they form (or extend) the last region. Two
// runs with at most `gap` equal bytes between them are one region, holding those
// equal bytes too; with a gap of 0 only touching runs are joined, which they never
// are apart from the tail. Throws ShorterImage when `newer` is the shorter, and
// std::length_error when `newer` has addresses beyond 32 bits.
std::vector<DiffRange> compareImages(std::span<const std::uint8_t> older, std::span<const std::uint8_t> newer,
                                     std::size_t gap = 0);

// The same for two files, read in place through mappings a window at a time, so
// memory stays a few MiB whatever the images' size. Also throws FileError for a file
// that cannot be opened.
std::vector<DiffRange> compareImageFiles(const std::string& olderPath, const std::string& newerPath,
                                         std::size_t gap = 0);

// The same, given up as soon as there are more than `maxRanges` regions (nullopt), so
// that two images differing in every other byte cost neither the time nor the memory
// of millions of regions.
std::optional<std::vector<DiffRange>> compareImagesUpTo(std::span<const std::uint8_t> older,
                                                        std::span<const std::uint8_t> newer, std::size_t gap,
                                                        std::size_t maxRanges);

// The regions holding the bytes of `newer` in each range: what an in-image patch of
// the older image takes to become the newer one.
std::vector<Region> diffRegions(std::span<const std::uint8_t> newer, const std::vector<DiffRange>& ranges);

// Writes the ranges of `newer`, in the order given, as one patch file through the
// S-record patch writer (S0 line, the S3 lines of every range, S7 line). No range: no
// file, and false; true when the file was written. FileError as WriteSRecordRegion.
bool writeDiffPatch(const std::string& path, std::span<const std::uint8_t> newer, const std::vector<DiffRange>& ranges);

// The same patch with the bytes read from the file `newerPath`, a piece at a time,
// so a range of any size costs a MiB of memory.
bool writeDiffPatchFromFile(const std::string& path, const std::string& newerPath,
                            const std::vector<DiffRange>& ranges);

// "0x00001234 0x0000123F 12": first and last address, then the size in decimal.
std::string describeRange(const DiffRange& range);

// The first bytes of the range in `image` as spaced hex pairs, "41 42 43", at most
// `limit` of them and then "..." when the range holds more. Bytes past the image's end
// (a range in the tail of a longer second image) are not shown.
std::string previewBytes(std::span<const std::uint8_t> image, const DiffRange& range, std::size_t limit = 8);

}  // namespace zevran::image
