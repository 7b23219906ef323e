#include "picture_encode.hpp"

#include "image/hex_text.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace zevran::pictures {

namespace {

// The mono display memory: 96 columns by 8 pages of 8 pixel rows.
constexpr std::int64_t kMonoBytes = 768;

std::string sizeText(std::int64_t width, std::int64_t height)
{
    return std::to_string(width) + "*" + std::to_string(height);
}

std::string addressText(std::int64_t address) { return "0x" + image::HexPad(static_cast<std::uint32_t>(address), 8); }

// Walks every image bit that the preview shows of the frame, pixel by pixel, top row
// first. For each piece it calls visit(pixel, image index, mask, value): the bits of
// `mask` in the image byte are shown by pixel number `pixel` (y * width + x), and the
// pixel's code from codeOf(pixel) puts `value` there. The codes per depth: 24 the
// stored blue | green << 8 | red << 16, 16 the stored word, 12 R4 G4 B4, 8 the stored
// byte, 4 the colour index, 1 all ones for white. Widths and heights are not negative.
// Depths 24, 16 and 4: the rows as the preview's BMP copies them.
template <typename CodeOf, typename Visit>
void walkCopiedRows(const FrameLayout& frame, CodeOf&& codeOf, Visit&& visit)
{
    const int bits = frame.depth;
    const double bytesPerPixel = bits / 8.0;
    const std::int64_t stride = bmpStride(frame.width, bits);
    const std::int64_t count = copiedBytesPerRow(frame.width, bytesPerPixel, stride);
    for (std::int64_t y = 0; y < frame.height; ++y) {
        const double rowStart = copiedRowStart(bytesPerPixel, y, frame.width);
        for (std::int64_t x = 0; x < frame.width; ++x) {
            const std::int64_t pixel = y * frame.width + x;
            const std::uint32_t code = codeOf(pixel);
            if (bits == 4) {
                // The first pixel of a BMP byte is its high nibble.
                const std::int64_t i = x / 2;
                if (i >= count) continue;
                const bool high = x % 2 == 0;
                visit(pixel, copiedByteIndex(rowStart, i, frame.address),
                      static_cast<std::uint8_t>(high ? 0xF0u : 0x0Fu),
                      static_cast<std::uint8_t>(high ? code << 4 : code));
                continue;
            }
            const int bytes = bits / 8;
            for (int k = 0; k < bytes; ++k) {
                const std::int64_t i = x * bytes + k;
                if (i >= count) break;
                visit(pixel, copiedByteIndex(rowStart, i, frame.address), std::uint8_t{0xFF},
                      static_cast<std::uint8_t>(code >> (8 * k)));
            }
        }
    }
}

// Depth 12: pixel pairs in three bytes, the first pixel in the high 12 bits.
template <typename CodeOf, typename Visit>
void walkPixelPairs(const FrameLayout& frame, CodeOf&& codeOf, Visit&& visit)
{
    for (std::int64_t pixel = 0; pixel < std::int64_t{frame.width} * frame.height; ++pixel) {
        const std::int64_t at = frame.address + pixel / 2 * 3;
        const std::uint32_t code = codeOf(pixel);
        if (pixel % 2 == 0) {
            visit(pixel, at, std::uint8_t{0xFF}, static_cast<std::uint8_t>(code >> 4));
            visit(pixel, at + 1, std::uint8_t{0xF0}, static_cast<std::uint8_t>(code << 4));
        } else {
            visit(pixel, at + 1, std::uint8_t{0x0F}, static_cast<std::uint8_t>(code >> 8));
            visit(pixel, at + 2, std::uint8_t{0xFF}, static_cast<std::uint8_t>(code));
        }
    }
}

// Depth 1: the preview's BMP holds round(width x height / 8) bytes: the display memory
// column by column, each column's pages from the bottom one up, then its rows turned
// bottom-up. Assembled byte a is shown in row a / stride, and only where the turn
// copied it (both it and its mirror lie in the data).
template <typename CodeOf, typename Visit>
void walkDisplayMemory(const FrameLayout& frame, CodeOf&& codeOf, Visit&& visit)
{
    const std::int64_t width = frame.width;
    const std::int64_t height = frame.height;
    const auto size = std::max<std::int64_t>(
        0, static_cast<std::int64_t>(std::nearbyint(static_cast<double>(frame.width) * frame.height / 8)));
    const std::int64_t stride = bmpStride(frame.width, 1);
    const std::int64_t shown = std::min(size, kMonoBytes);
    for (std::int64_t y = 0; y < height && y * stride < shown; ++y) {
        const std::int64_t from = y * stride;
        const std::int64_t to = (height - 1 - y) * stride;
        for (std::int64_t x = 0; x < width; ++x) {
            const std::int64_t j = x / 8;
            if (from + j >= shown) break;
            if (to + j >= size) continue;
            const std::int64_t pixel = y * width + x;
            const std::int64_t a = from + j;
            const std::int64_t column = a / 8;
            const std::int64_t page = 7 - a % 8;
            visit(pixel, frame.address + page * 96 + column, static_cast<std::uint8_t>(0x80u >> (x % 8)),
                  static_cast<std::uint8_t>(codeOf(pixel)));
        }
    }
}

template <typename CodeOf, typename Visit>
void walkShownBits(const FrameLayout& frame, CodeOf&& codeOf, Visit&& visit)
{
    switch (frame.depth) {
    case 24:
    case 16:
    case 4: walkCopiedRows(frame, codeOf, visit); break;
    case 8:
        for (std::int64_t pixel = 0; pixel < std::int64_t{frame.width} * frame.height; ++pixel)
            visit(pixel, frame.address + pixel, std::uint8_t{0xFF}, static_cast<std::uint8_t>(codeOf(pixel)));
        break;
    case 12: walkPixelPairs(frame, codeOf, visit); break;
    case 1: walkDisplayMemory(frame, codeOf, visit); break;
    default: break;
    }
}

std::string englishText(ImportRefusal reason, const std::vector<std::string>& v)
{
    auto at = [&](std::size_t i) { return i < v.size() ? v[i] : std::string(); };
    switch (reason) {
    case ImportRefusal::Depth:
        return "a picture of depth " + at(0) + " cannot be imported (depths 1, 4, 8, 12, 16 and 24 can)";
    case ImportRefusal::NegativeSize: return "a frame of " + at(0) + " pixels has a negative dimension";
    case ImportRefusal::TooLarge: return "a frame of " + at(0) + " pixels is too large for a handset picture";
    case ImportRefusal::PictureSize: return "the picture is " + at(0) + " pixels, the row's frames are " + at(1);
    case ImportRefusal::PixelData: return "the picture's pixel data does not match its " + at(0) + " pixels";
    case ImportRefusal::NoBytes: return "a frame of " + at(0) + " pixels shows no image byte";
    case ImportRefusal::PastEnd:
        return "the frame's bytes " + at(0) + "-" + at(1) + " run past the image (" + at(2) + " bytes)";
    case ImportRefusal::Clash:
        return "pixels " + at(0) + " and " + at(1) + " show the same bits of the image byte at " + at(2) +
               " but differ in colour";
    case ImportRefusal::NoSuchFrame:
        return "the row has " + at(1) + " frames, counted from 1; there is no frame " + at(0) + " to import into";
    }
    return "the picture cannot be imported";
}

bool importableDepth(int depth)
{
    return depth == 1 || depth == 4 || depth == 8 || depth == 12 || depth == 16 || depth == 24;
}

void checkLayout(const FrameLayout& frame)
{
    if (!importableDepth(frame.depth)) throw PictureImportError(ImportRefusal::Depth, {std::to_string(frame.depth)});
    if (frame.width < 0 || frame.height < 0)
        throw PictureImportError(ImportRefusal::NegativeSize, {sizeText(frame.width, frame.height)});
    const int bmpBits = frame.depth == 1 || frame.depth == 4 || frame.depth == 16 ? frame.depth : 24;
    const std::int64_t dataSize =
        frame.depth == 1
            ? static_cast<std::int64_t>(std::nearbyint(static_cast<double>(frame.width) * frame.height / 8))
            : bmpStride(frame.width, bmpBits) * frame.height;
    if (dataSize > kLargestPixelData)
        throw PictureImportError(ImportRefusal::TooLarge, {sizeText(frame.width, frame.height)});
}

std::uint32_t noCode(std::int64_t) { return 0; }

// Depths 8, 12, 16 and 24 into the region, which holds every byte the frame shows.
void writeWholeBytes(const PictureGrid& picture, const FrameLayout& frame, image::Region& region)
{
    const std::int64_t width = frame.width;
    const std::int64_t height = frame.height;
    const std::uint8_t* rgb = picture.rgb.data();
    std::uint8_t* bytes = region.bytes.data();
    const std::int64_t offset = frame.address - region.first;  // region index of the frame's address
    switch (frame.depth) {
    case 24:
    case 16: {
        const int bytesPerPixel = frame.depth / 8;
        for (std::int64_t y = 0; y < height; ++y) {
            // Whole bytes a pixel: the row's bytes lie one after another from its start.
            const std::int64_t rowStart =
                copiedByteIndex(copiedRowStart(bytesPerPixel, y, frame.width), 0, frame.address) - region.first;
            std::uint8_t* out = bytes + rowStart;
            const std::uint8_t* in = rgb + 3 * y * width;
            for (std::int64_t x = 0; x < width; ++x, in += 3) {
                if (bytesPerPixel == 3) {
                    *out++ = in[2];
                    *out++ = in[1];
                    *out++ = in[0];
                } else {
                    const std::uint16_t word = depth16Word(in[0], in[1], in[2]);
                    *out++ = static_cast<std::uint8_t>(word);
                    *out++ = static_cast<std::uint8_t>(word >> 8);
                }
            }
        }
        break;
    }
    case 8:
        for (std::int64_t pixel = 0; pixel < width * height; ++pixel)
            bytes[offset + pixel] = depth8Byte(rgb[3 * pixel], rgb[3 * pixel + 1], rgb[3 * pixel + 2]);
        break;
    case 12:
        for (std::int64_t pixel = 0; pixel < width * height; ++pixel) {
            const std::uint16_t code = depth12Value(rgb[3 * pixel], rgb[3 * pixel + 1], rgb[3 * pixel + 2]);
            std::uint8_t* at = bytes + offset + pixel / 2 * 3;
            if (pixel % 2 == 0) {
                at[0] = static_cast<std::uint8_t>(code >> 4);
                at[1] = static_cast<std::uint8_t>((at[1] & 0x0F) | ((code << 4) & 0xF0));
            } else {
                at[1] = static_cast<std::uint8_t>((at[1] & 0xF0) | (code >> 8));
                at[2] = static_cast<std::uint8_t>(code);
            }
        }
        break;
    default: break;
    }
}

}  // namespace

PictureImportError::PictureImportError(ImportRefusal reason, std::vector<std::string> values)
    : std::runtime_error(englishText(reason, values)), m_reason(reason), m_values(std::move(values))
{
}

std::uint16_t depth16Word(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    return static_cast<std::uint16_t>((red >> 3) << 11 | (green >> 2) << 5 | blue >> 3);
}

std::uint16_t depth12Value(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    return static_cast<std::uint16_t>((red >> 4) << 8 | (green >> 4) << 4 | blue >> 4);
}

std::uint8_t depth8Byte(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    // Bits 7-5 are what the preview shows as blue, bits 1-0 as red.
    return static_cast<std::uint8_t>((blue >> 5) << 5 | (green >> 5) << 2 | red >> 6);
}

bool monoWhite(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    return 299 * red + 587 * green + 114 * blue >= 128000;
}

std::uint8_t nearestColourIndex(const ColourTable& colours, std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    int best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < 16; ++i) {
        const auto at = 4 * static_cast<std::size_t>(i);
        const int db = blue - colours[at];
        const int dg = green - colours[at + 1];
        const int dr = red - colours[at + 2];
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < bestDistance) best = i, bestDistance = distance;
    }
    return static_cast<std::uint8_t>(best);
}

std::optional<ShownBytes> shownImageBytes(const FrameLayout& frame)
{
    checkLayout(frame);
    const std::int64_t width = frame.width;
    const std::int64_t height = frame.height;
    if (width == 0 || height == 0) return std::nullopt;
    // Every index grows with the row and with the byte in the row, so the first pixel
    // shows the first byte and the last row the last; only the mono memory is walked.
    switch (frame.depth) {
    case 8: return ShownBytes{frame.address, frame.address + width * height - 1};
    case 12: {
        const std::int64_t lastPixel = width * height - 1;
        const std::int64_t at = frame.address + lastPixel / 2 * 3;
        return ShownBytes{frame.address, lastPixel % 2 == 0 ? at + 1 : at + 2};
    }
    case 4:
    case 16:
    case 24: {
        const double bytesPerPixel = frame.depth / 8.0;
        const std::int64_t count = copiedBytesPerRow(frame.width, bytesPerPixel, bmpStride(frame.width, frame.depth));
        // At depth 4 the last byte a row copies may lie past its last pixel.
        const std::int64_t lastByte = frame.depth == 4 ? std::min(count - 1, (width - 1) / 2) : count - 1;
        if (lastByte < 0) return std::nullopt;
        return ShownBytes{
            copiedByteIndex(copiedRowStart(bytesPerPixel, 0, frame.width), 0, frame.address),
            copiedByteIndex(copiedRowStart(bytesPerPixel, height - 1, frame.width), lastByte, frame.address)};
    }
    default: break;
    }
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    walkShownBits(frame, noCode, [&](std::int64_t, std::int64_t index, std::uint8_t, std::uint8_t) {
        first = std::min(first, index);
        last = std::max(last, index);
    });
    if (first > last) return std::nullopt;
    return ShownBytes{first, last};
}

image::Region encodePictureFrame(const PictureGrid& picture, const FrameLayout& frame,
                                 std::span<const std::uint8_t> image, const ColourTable& colours)
{
    return encodePictureFrameCounted(picture, frame, image, colours).region;
}

namespace {

// The image bytes the frame shows, once the picture is found to fit them.
ShownBytes checkedRange(const PictureGrid& picture, const FrameLayout& frame, std::span<const std::uint8_t> image)
{
    checkLayout(frame);
    if (picture.width != frame.width || picture.height != frame.height)
        throw PictureImportError(ImportRefusal::PictureSize,
                                 {sizeText(picture.width, picture.height), sizeText(frame.width, frame.height)});
    const auto pixels = static_cast<std::size_t>(std::int64_t{picture.width} * picture.height);
    if (picture.rgb.size() != 3 * pixels || (!picture.indices.empty() && picture.indices.size() != pixels))
        throw PictureImportError(ImportRefusal::PixelData, {sizeText(picture.width, picture.height)});
    const auto range = shownImageBytes(frame);
    if (!range) throw PictureImportError(ImportRefusal::NoBytes, {sizeText(frame.width, frame.height)});
    const auto imageSize = static_cast<std::int64_t>(image.size());
    if (range->first < 0 || range->last >= imageSize || range->last > std::numeric_limits<std::int32_t>::max())
        throw PictureImportError(ImportRefusal::PastEnd,
                                 {addressText(range->first), addressText(range->last), std::to_string(imageSize)});
    return *range;
}

// Each pixel's code at the frame's depth (see walkShownBits).
class PixelCodes {
public:
    PixelCodes(const PictureGrid& picture, int depth, const ColourTable& colours)
        : m_picture(picture), m_depth(depth), m_colours(colours), m_indexed(depth == 4 && !picture.indices.empty())
    {
    }

    std::uint32_t operator()(std::int64_t pixel)
    {
        const std::uint8_t* p = m_picture.rgb.data() + 3 * pixel;
        const std::uint8_t red = p[0], green = p[1], blue = p[2];
        switch (m_depth) {
        case 24: return std::uint32_t{blue} | std::uint32_t{green} << 8 | std::uint32_t{red} << 16;
        case 16: return depth16Word(red, green, blue);
        case 12: return depth12Value(red, green, blue);
        case 8: return depth8Byte(red, green, blue);
        case 4: {
            if (m_indexed) return m_picture.indices[static_cast<std::size_t>(pixel)] & 0x0Fu;
            // The last colour looked up, so a run of equal pixels costs one search.
            const std::uint32_t key = std::uint32_t{red} << 16 | std::uint32_t{green} << 8 | blue;
            if (key != m_lastRgb) m_lastRgb = key, m_lastIndex = nearestColourIndex(m_colours, red, green, blue);
            return m_lastIndex;
        }
        default: return monoWhite(red, green, blue) ? 0xFF : 0x00;
        }
    }

private:
    const PictureGrid& m_picture;
    int m_depth;
    const ColourTable& m_colours;
    bool m_indexed;
    std::uint32_t m_lastRgb = 0xFFFFFFFF;
    std::uint8_t m_lastIndex = 0;
};

// Depth 4 at an even width: every byte holds two pixels of one row, written straight.
void writeNibblePairs(const FrameLayout& frame, std::int64_t first, image::Region& region, PixelCodes& codeOf)
{
    const std::int64_t half = frame.width / 2;
    for (std::int64_t y = 0; y < frame.height; ++y) {
        std::uint8_t* out = region.bytes.data() + (frame.address + y * half - first);
        for (std::int64_t i = 0; i < half; ++i) {
            const std::int64_t pixel = y * frame.width + 2 * i;
            *out++ = static_cast<std::uint8_t>(codeOf(pixel) << 4 | codeOf(pixel + 1));
        }
    }
}

// Two pixels that want different values of one image bit: the one that set it first,
// the one refused, and the byte.
[[noreturn]] void refuseClash(const FrameLayout& frame, std::int64_t clashPixel, std::int64_t clashIndex,
                              std::uint8_t clashMask)
{
    std::int64_t earlier = -1;
    walkShownBits(frame, noCode, [&](std::int64_t pixel, std::int64_t index, std::uint8_t mask, std::uint8_t) {
        if (earlier < 0 && index == clashIndex && (mask & clashMask)) earlier = pixel;
    });
    const std::int64_t w = frame.width;
    auto place = [w](std::int64_t pixel) {
        return "(" + std::to_string(pixel % w) + ", " + std::to_string(pixel / w) + ")";
    };
    throw PictureImportError(ImportRefusal::Clash, {place(earlier), place(clashPixel), addressText(clashIndex)});
}

// Depth 1, and 4 at an odd width: bit by bit, refusing pixels that clash, counting the
// pixels no bit holds.
std::int64_t writeBitByBit(const FrameLayout& frame, std::int64_t first, image::Region& region, PixelCodes& codeOf)
{
    std::vector<std::uint8_t> written(region.bytes.size(), 0);
    std::vector<bool> stored(static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height), false);
    std::int64_t clashPixel = -1, clashIndex = 0;
    std::uint8_t clashMask = 0;
    walkShownBits(frame, codeOf, [&](std::int64_t pixel, std::int64_t index, std::uint8_t mask, std::uint8_t value) {
        if (clashPixel >= 0) return;
        const auto at = static_cast<std::size_t>(index - first);
        std::uint8_t& byte = region.bytes[at];
        const std::uint8_t differing = written[at] & mask & (byte ^ value);
        if (differing) {
            clashPixel = pixel, clashIndex = index, clashMask = differing;
            return;
        }
        byte = static_cast<std::uint8_t>((byte & ~mask) | (value & mask));
        written[at] |= mask;
        stored[static_cast<std::size_t>(pixel)] = true;
    });
    if (clashPixel >= 0) refuseClash(frame, clashPixel, clashIndex, clashMask);
    // A pixel no bit holds shows in colour 0 (the preview's zero padding); only one of
    // another colour is lost. The display memory holds every pixel of a mono picture.
    std::int64_t unstored = 0;
    if (frame.depth == 4)
        for (std::size_t pixel = 0; pixel < stored.size(); ++pixel)
            if (!stored[pixel] && codeOf(static_cast<std::int64_t>(pixel)) != 0) ++unstored;
    return unstored;
}

}  // namespace

EncodedFrame encodePictureFrameCounted(const PictureGrid& picture, const FrameLayout& frame,
                                       std::span<const std::uint8_t> image, const ColourTable& colours)
{
    const ShownBytes range = checkedRange(picture, frame, image);
    image::Region region{static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last),
                         std::vector<std::uint8_t>(image.begin() + range.first, image.begin() + range.last + 1)};
    // Depths 8, 12, 16 and 24 show each image bit at most once and in one run of bytes
    // a row: written straight, no pixel can clash with another.
    if (frame.depth != 4 && frame.depth != 1) {
        writeWholeBytes(picture, frame, region);
        return {std::move(region), 0};
    }
    PixelCodes codeOf(picture, frame.depth, colours);
    if (frame.depth == 4 && frame.width % 2 == 0) {
        writeNibblePairs(frame, range.first, region, codeOf);
        return {std::move(region), 0};
    }
    const std::int64_t unstored = writeBitByBit(frame, range.first, region, codeOf);
    return {std::move(region), unstored};
}

}  // namespace zevran::pictures
