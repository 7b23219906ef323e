// The bytes of the image as its phone file held them when opened (or last saved), kept
// only where something has written since: an edit of a few bytes in a 256 MiB image
// costs a few bytes here, not a second copy of the image. From them follow the bytes
// that differ from the file, and the regions a patch of every change must hold.
#pragma once

#include "patch_writer.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace zevran::image {

// The region that overwrites the image from `address` on with `bytes`; the image
// never changes length, so the bytes are cut at its end. None when nothing is left.
std::optional<Region> overwriteRegion(std::size_t imageSize, std::int64_t address, std::span<const std::uint8_t> bytes);

class OriginalBytes {
public:
    // The image now equals its phone file.
    void reset() { m_kept.clear(); }

    // Keeps the image's present bytes at [first, first + count) where none are kept
    // yet: call before writing there. Parts outside the image are ignored.
    void remember(std::span<const std::uint8_t> image, std::int64_t first, std::size_t count);
    void remember(std::span<const std::uint8_t> image, const std::vector<Region>& regions);

    // True when the image's byte differs from the file's.
    bool changedAt(std::span<const std::uint8_t> image, std::size_t address) const;
    // The runs of bytes that differ, as [first, end), in address order.
    std::vector<std::pair<std::size_t, std::size_t>> changedSpans(std::span<const std::uint8_t> image) const;
    // The same runs as regions holding the image's present bytes: the patch that turns
    // the file as opened into the image.
    std::vector<Region> changedRegions(std::span<const std::uint8_t> image) const;

    std::size_t keptBytes() const;

private:
    std::map<std::size_t, std::vector<std::uint8_t>> m_kept;  // by first address; apart and not touching
};

}  // namespace zevran::image
