#include "picture_frames.hpp"

#include "image/hex_text.hpp"

#include <cmath>
#include <limits>
#include <tuple>

namespace zevran::pictures {

using namespace zevran::image;

namespace {

std::int64_t wholeNumber(std::string_view cell, Reason tooLarge)
{
    return roundToInt32(leadingNumber(cell), tooLarge, cell);
}

}  // namespace

FrameGeometry frameGeometry(const PictureEntry& row)
{
    FrameGeometry geometry;
    geometry.start = HexToLong(row.address);
    geometry.frameSize = wholeNumber(row.frameSize, Reason::FrameSizeTooLarge);
    geometry.frames = wholeNumber(row.frames, Reason::FrameCountTooLarge);
    std::tie(geometry.width, geometry.height) = pictureDimensions(row.dimensions);
    geometry.depth = static_cast<int>(wholeNumber(row.depth, Reason::DepthTooLarge));
    return geometry;
}

bool frameRunsPastImage(const FrameGeometry& geometry, std::int64_t address, std::size_t imageSize)
{
    // The pixels the decoder reads: width x height at `depth` bits each, whole bytes.
    const double bytes = std::ceil(static_cast<double>(geometry.width) * geometry.height * geometry.depth / 8);
    return address < 0 || static_cast<double>(address) + bytes > static_cast<double>(imageSize);
}

std::int64_t frameAddress(const FrameGeometry& geometry, std::int64_t k)
{
    return geometry.start + k * geometry.frameSize;
}

std::string pictureFramePath(std::string_view folder, std::string_view name, std::int64_t frameIndex)
{
    while (!name.empty() && name.front() == ' ') name.remove_prefix(1);
    while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
    return std::string(folder) + std::string(name) + "-" + ZeroPad(std::to_string(frameIndex + 1), 2) + ".bmp";
}

std::optional<Region> picturePatchRegion(const ImageState& state, const PictureEntry& row)
{
    // A failure here names the row it is about.
    auto onRow = [&row](Reason reason, std::vector<std::string> values = {}) {
        return TypedError<std::out_of_range>(Reason::OnRow, {row.number}, Failure{reason, std::move(values), nullptr});
    };
    const std::string_view address = row.address;
    const std::int64_t start = HexToLong(address.substr(std::min<std::size_t>(2, address.size())));
    const double frames = std::nearbyint(leadingNumber(row.frames));
    if (std::fabs(frames) > kMostPatchFrames) throw onRow(Reason::FramesAbove32767, {row.frames});
    const double last = std::nearbyint(frames * leadingNumber(row.frameSize) + static_cast<double>(start) - 1);
    if (!(last >= std::numeric_limits<std::int32_t>::min() && last <= std::numeric_limits<std::int32_t>::max()))
        throw onRow(Reason::PictureEndPast32Bit);
    const std::int64_t length = static_cast<std::int64_t>(last) - start + 1;
    if (length == 0) return std::nullopt;
    if (length < 0) throw onRow(Reason::NegativeFramesOrSize);
    if (start + length > static_cast<std::int64_t>(state.FirmwareImage.size()))
        throw onRow(Reason::FramesPastImage,
                    {HexPad(static_cast<std::uint32_t>(start), 8), HexPad(static_cast<std::uint32_t>(last), 8),
                     std::to_string(state.FirmwareImage.size())});
    const auto begin = state.FirmwareImage.begin() + start;
    return Region{static_cast<std::int32_t>(start), static_cast<std::int32_t>(last),
                  std::vector<std::uint8_t>(begin, begin + length)};
}

}  // namespace zevran::pictures
