#include "picture_player.hpp"

#include "image/hex_text.hpp"

#include <limits>

namespace zevran::pictures {

FrameNumber steppedFrame(FrameNumber current, int delta)
{
    const int stepped = int{current} + delta;
    if (stepped < std::numeric_limits<FrameNumber>::min() || stepped > std::numeric_limits<FrameNumber>::max())
        throw PlayerOverflow(image::Reason::FrameNumberOutOfRange, {std::to_string(stepped)});
    return static_cast<FrameNumber>(stepped);
}

std::int32_t shownFrameAddress(const FrameGeometry& geometry, FrameNumber frame)
{
    // Start, size and frame are each far inside 64 bits, so the product cannot wrap here.
    const std::int64_t address = frameAddress(geometry, frame);
    if (address < std::numeric_limits<std::int32_t>::min() || address > std::numeric_limits<std::int32_t>::max())
        throw PlayerOverflow(image::Reason::FramePast32Bit, {std::to_string(int{frame} + 1), std::to_string(address)});
    return static_cast<std::int32_t>(address);
}

std::string frameAddressText(std::int32_t address)
{
    return "0x" + image::HexPad(static_cast<std::uint32_t>(address), 1);
}

std::string frameOrdinalText(FrameNumber frame) { return std::to_string(int{frame} + 1); }

AnimationTick animationTick(FrameNumber current, std::int64_t frameCount, bool repeat)
{
    if (current < frameCount) return {current, steppedFrame(current, 1), false};
    return {0, static_cast<FrameNumber>(repeat ? 1 : 0), !repeat};
}

std::string previewFilePath(std::string_view folder) { return std::string(folder) + "/temp.bmp"; }

std::string animationFilePath(std::string_view folder, FrameNumber frame)
{
    return std::string(folder) + "/temp" + std::to_string(frame) + ".bmp";
}

ColourTable coloursForDepth(int depth, const std::string& colourTablePath)
{
    return depth == 4 ? readColourTable(colourTablePath) : ColourTable{};
}

bool decodePreviewFrame(std::span<const std::uint8_t> image, const FrameGeometry& geometry, std::int64_t address,
                        const std::string& path, const std::string& colourTablePath)
{
    if (geometry.depth == 1) return DecodeMonoFrame(image, address, path, geometry.width, geometry.height);
    return DecodePictureFrame(image, address, path, geometry.width, geometry.height, geometry.depth,
                              coloursForDepth(geometry.depth, colourTablePath));
}

}  // namespace zevran::pictures
