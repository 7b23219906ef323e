// The input as a picture table file, read with and without recomputed frame sizes.
// Each row read is turned into its geometry, the BMP of its first two frames at its
// own depth and as mono display memory, and its patch region, all against a fixed
// 8 KiB image. The documented refusals are answers; the BMP's size field must match
// its bytes and a region must hold exactly the image bytes it names.
#include "image/hex_text.hpp"
#include "pictures/picture_frames.hpp"
#include "pictures/picture_table.hpp"
#include "pictures/pixel_decode.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

using namespace zevran;
using namespace zevran::pictures;

namespace {

void fail(const char* what, const PictureEntry& row)
{
    std::fprintf(
        stderr,
        "picture_table_fuzz: %s (row %s: address \"%s\" frames \"%s\" size \"%s\" dimensions \"%s\" depth \"%s\")\n",
        what, row.number.c_str(), row.address.c_str(), row.frames.c_str(), row.frameSize.c_str(),
        row.dimensions.c_str(), row.depth.c_str());
    std::abort();
}

const image::ImageState& fixedImage()
{
    static const image::ImageState state = [] {
        std::vector<std::uint8_t> bytes(8192);
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 31 + (i >> 8));
        image::ImageState made;
        image::setImage(made, "fixed.bin", std::move(bytes));
        return made;
    }();
    return state;
}

const ColourTable& fixedColours()
{
    static const ColourTable colours = [] {
        ColourTable made{};
        for (std::size_t i = 0; i < made.size(); ++i) made[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 0 : i * 4);
        return made;
    }();
    return colours;
}

std::uint32_t littleAt(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    return std::uint32_t{bytes[at]} | std::uint32_t{bytes[at + 1]} << 8 | std::uint32_t{bytes[at + 2]} << 16 |
           std::uint32_t{bytes[at + 3]} << 24;
}

void checkBmp(const std::vector<std::uint8_t>& bmp, const PictureEntry& row)
{
    if (bmp.size() < 54 || bmp[0] != 'B' || bmp[1] != 'M') fail("BMP without its header", row);
    if (littleAt(bmp, 2) != bmp.size()) fail("BMP size field differs from its bytes", row);
    if (std::uint64_t{littleAt(bmp, 10)} + littleAt(bmp, 34) != bmp.size())
        fail("BMP pixel offset and data size do not add up to its bytes", row);
}

void checkFrames(const PictureEntry& row)
{
    const image::ImageState& state = fixedImage();
    FrameGeometry geometry;
    try {
        geometry = frameGeometry(row);
    } catch (const image::HexOverflow&) {
        return;
    } catch (const PictureTableError&) {
        return;
    }
    // Dimensions beyond any handset screen decode the same way as small ones, only
    // slower: a 4000x4000 row would hold the fuzzer to a few inputs a second.
    constexpr std::int64_t kMaxPixels = std::int64_t{256} * 256;
    if (std::int64_t{geometry.width} * geometry.height > kMaxPixels) return;
    for (std::int64_t k = 0; k < 2; ++k) {
        const std::int64_t address = frameAddress(geometry, k);
        try {
            const auto bmp = pictureFrameBmp(state.FirmwareImage, address, geometry.width, geometry.height,
                                             geometry.depth, fixedColours());
            if (bmp) checkBmp(*bmp, row);
        } catch (const std::length_error&) {
        }
        try {
            checkBmp(monoFrameBmp(state.FirmwareImage, address, geometry.width, geometry.height), row);
        } catch (const std::length_error&) {
        }
    }
}

void checkRegion(const PictureEntry& row)
{
    const image::ImageState& state = fixedImage();
    std::optional<image::Region> region;
    try {
        region = picturePatchRegion(state, row);
    } catch (const std::out_of_range&) {
        return;
    } catch (const image::HexOverflow&) {
        // The address cell is read as hex, as frameGeometry reads it.
        return;
    }
    if (!region) return;
    const auto& image = state.FirmwareImage;
    if (region->first < 0 || region->last < region->first || static_cast<std::size_t>(region->last) >= image.size())
        fail("patch region lies outside the image", row);
    if (static_cast<std::size_t>(region->last - region->first) + 1 != region->bytes.size())
        fail("patch region's bytes differ in number from first to last", row);
    if (!std::equal(region->bytes.begin(), region->bytes.end(), image.begin() + region->first))
        fail("patch region's bytes are not the image's", row);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const bool recomputeSize : {false, true}) {
        std::vector<PictureEntry> rows;
        try {
            rows = readPictureTable(text, recomputeSize);
        } catch (const PictureTableError&) {
            continue;
        }
        for (const PictureEntry& row : rows) {
            checkFrames(row);
            checkRegion(row);
        }
    }
    return 0;
}
