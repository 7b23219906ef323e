#include "picture_finder.hpp"

#include "image/hex_text.hpp"

#include <algorithm>
#include <cmath>

namespace zevran::pictures {

namespace {

std::int64_t rowBytes(std::int32_t width, int depth)
{
    return static_cast<std::int64_t>(std::nearbyint(static_cast<double>(width) * depth / 8));
}

}  // namespace

std::vector<WidthScore> guessWidths(std::span<const std::uint8_t> image, std::int64_t address, int depth,
                                    std::int32_t least, std::int32_t most, const ColourTable& colours)
{
    if (depth == 1) throw WidthGuessError(image::Reason::MonoHasNoWidth);
    if (!viewDepthDrawable(depth)) throw WidthGuessError(image::Reason::NotAPictureDepth, {std::to_string(depth)});
    if (least < 1 || most < least || most > kWidestGuess)
        throw WidthGuessError(image::Reason::WidthRangeWrong,
                              {std::to_string(least), std::to_string(most), std::to_string(kWidestGuess)});
    // One line of pixels: for depths other than 4 at odd widths, where the preview's
    // rounding skips a byte now and then, this is every width's picture read flat.
    const std::int32_t sample = kGuessSampleRows * most;
    ViewRenderer renderer;
    renderer.render(image, {address, depth, sample, 1}, colours);
    const auto& pixels = renderer.pixels();
    std::vector<WidthScore> scores;
    for (std::int32_t width = least; width <= most; ++width) {
        std::int64_t total = 0, pairs = 0;
        for (std::int32_t p = 0; p + width < sample; ++p) {
            const std::uint32_t a = pixels[static_cast<std::size_t>(p)];
            const std::uint32_t b = pixels[static_cast<std::size_t>(p) + static_cast<std::size_t>(width)];
            if (a == kNoDataPixel || b == kNoDataPixel) continue;
            total += colourDistance(a, b);
            ++pairs;
        }
        if (pairs > 0) scores.push_back({width, static_cast<double>(total) / static_cast<double>(pairs)});
    }
    if (scores.empty())
        throw image::WorkshopError(image::Reason::NoWidthFits, {std::to_string(least), std::to_string(most)});
    std::stable_sort(scores.begin(), scores.end(),
                     [](const WidthScore& a, const WidthScore& b) { return a.score < b.score; });
    return scores;
}

std::int64_t moveBytes(FinderMove move, const ViewGeometry& view, std::int32_t pictureHeight)
{
    constexpr std::int64_t kMonoFrame = static_cast<std::int64_t>(kMonoMemoryBytes);
    std::int64_t bytes = 1;
    const bool mono = view.depth == 1;
    switch (move) {
    case FinderMove::Byte: bytes = 1; break;
    case FinderMove::Pixel: bytes = view.depth == 12 ? 3 : std::max(1, view.depth / 8); break;
    case FinderMove::Row: bytes = mono ? 1 : rowBytes(view.width, view.depth); break;
    case FinderMove::Frame: bytes = mono ? kMonoFrame : foundFrameSize(view.width, pictureHeight, view.depth); break;
    case FinderMove::Page: bytes = mono ? kMonoFrame : rowBytes(view.width, view.depth) * view.rows; break;
    }
    return std::max<std::int64_t>(bytes, 1);
}

std::int64_t pixelAddress(const ViewGeometry& view, std::int32_t x, std::int32_t y)
{
    if (view.depth == 1) {
        // Row y of the mono picture is display column y; its byte x / 8 is page 7 - x / 8.
        if (x < 0 || y < 0 || x >= kMonoViewWidth || y >= kMonoViewHeight) return -1;
        return view.address + std::int64_t{7 - x / 8} * 96 + y;
    }
    if (x < 0 || y < 0 || x >= view.width || y >= view.rows) return -1;
    const std::int64_t pixel = std::int64_t{y} * view.width + x;
    switch (view.depth) {
    case 4: {                         // the same half-to-even rounding as the row assembly
        const int byteInRow = x / 2;  // two pixels a byte
        return static_cast<std::int64_t>(
            std::nearbyint(0.5 * static_cast<double>(y) * view.width + byteInRow + static_cast<double>(view.address)));
    }
    case 12: return view.address + pixel / 2 * 3;
    default: return view.address + pixel * (view.depth / 8);
    }
}

std::int64_t foundFrameSize(std::int32_t width, std::int32_t height, int depth)
{
    return static_cast<std::int64_t>(std::nearbyint(static_cast<double>(width) * height * depth / 8));
}

bool pictureNameAllowed(std::string_view name)
{
    return !name.empty() && name.find_first_of(" \t\r\n") == std::string_view::npos;
}

std::string nextPictureNumber(const std::vector<PictureEntry>& rows)
{
    // A last number that is not one (typed over by hand) counts as the row's place.
    double last = rows.empty() ? 0 : std::nearbyint(leadingNumber(rows.back().number));
    if (!(last >= 1 && last < 1e9)) last = static_cast<double>(rows.size());
    return image::ZeroPad(std::to_string(static_cast<std::int64_t>(last) + 1), 3);
}

PictureEntry foundPictureEntry(const FoundPicture& picture, std::string number, std::string name)
{
    if (picture.address < 0 || picture.address > 0xFFFFFFFF)
        throw image::TypedError<std::invalid_argument>(image::Reason::AddressOutside32Bits,
                                                       {std::to_string(picture.address)});
    if (!pictureNameAllowed(name)) throw image::TypedError<std::invalid_argument>(image::Reason::NameWithSpace, {name});
    if (picture.frames < 1) throw image::TypedError<std::invalid_argument>(image::Reason::NoFrames);
    return {std::move(number),
            std::move(name),
            "0X" + image::HexPad(static_cast<std::uint32_t>(picture.address), 8),
            std::to_string(picture.frames),
            std::to_string(foundFrameSize(picture.width, picture.height, picture.depth)),
            std::to_string(picture.width) + "*" + std::to_string(picture.height),
            std::to_string(picture.depth)};
}

}  // namespace zevran::pictures
