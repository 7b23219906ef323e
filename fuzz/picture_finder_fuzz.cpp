// The picture finder over any bytes: the first eight input bytes choose a depth, a
// view size, an address (also before or past the image) and width limits, the rest
// is the image. Every pixel the view draws from the image must be the pixel the
// preview's BMP shows, the others the no-data pixel; the width guess must rank
// widths inside its limits, best first; a pixel's address must lie in the view's reach.
#include "pictures/picture_finder.hpp"
#include "pictures/picture_view.hpp"
#include "pictures/pixel_decode.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <vector>

using namespace zevran::pictures;

namespace {

[[noreturn]] void fail(const char* what, int depth, std::int32_t width, std::int32_t rows, std::int64_t address)
{
    std::fprintf(stderr, "picture_finder_fuzz: %s (depth %d, %d by %d at %lld)\n", what, depth, width, rows,
                 static_cast<long long>(address));
    std::abort();
}

std::uint32_t little(const std::vector<std::uint8_t>& bmp, std::size_t at, int bytes)
{
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = value << 8 | bmp[at + static_cast<std::size_t>(i)];
    return value;
}

// Pixel (x, y) of a BMP as a reader shows it (16 bits as 5-6-5 shifted up).
std::uint32_t shown(const std::vector<std::uint8_t>& bmp, std::int32_t x, std::int32_t y)
{
    const std::uint32_t offset = little(bmp, 10, 4);
    const auto width = static_cast<std::size_t>(little(bmp, 18, 4));
    const auto height = static_cast<std::int32_t>(little(bmp, 22, 4));
    const int bits = static_cast<int>(little(bmp, 28, 2));
    const std::size_t stride = (width * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    const std::size_t row = offset + static_cast<std::size_t>(height - 1 - y) * stride;
    const auto ux = static_cast<std::size_t>(x);
    auto table = [&](unsigned i) {
        return 0xFF000000u | unsigned{bmp[56 + 4 * i]} << 16 | unsigned{bmp[55 + 4 * i]} << 8 | bmp[54 + 4 * i];
    };
    switch (bits) {
    case 1: return table((bmp[row + ux / 8] >> (7 - ux % 8)) & 1);
    case 4: return table(ux % 2 ? bmp[row + ux / 2] & 0xF : bmp[row + ux / 2] >> 4);
    case 16: {
        const unsigned v = little(bmp, row + 2 * ux, 2);
        return 0xFF000000u | (v >> 11) << 19 | ((v >> 5) & 0x3F) << 10 | (v & 0x1F) << 3;
    }
    default:
        return 0xFF000000u | unsigned{bmp[row + 3 * ux + 2]} << 16 | unsigned{bmp[row + 3 * ux + 1]} << 8 |
               bmp[row + 3 * ux];
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 8) return 0;
    static constexpr int kDepths[8] = {1, 2, 4, 8, 12, 16, 24, 32};
    const int depth = kDepths[data[0] % 8];
    const std::int32_t width = data[1] % 100;
    const std::int32_t rows = data[2] % 32;
    const std::int64_t address = static_cast<std::int16_t>(data[3] | data[4] << 8);
    const std::int32_t least = data[5] % 40;
    const std::int32_t most = data[6] % 40;
    const std::span<const std::uint8_t> image(data + 8, size - 8);
    ColourTable colours{};
    for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = static_cast<std::uint8_t>(i * 7 + data[7]);

    ViewRenderer renderer;
    const bool drawn = renderer.render(image, {address, depth, width, rows}, colours);
    if (drawn != viewDepthDrawable(depth))
        fail("drawn for a refused depth, or refused a drawable one", depth, width, rows, address);
    if (drawn) {
        const bool mono = depth == 1;
        const std::int32_t w = mono ? 64 : width, h = mono ? 96 : rows;
        if (renderer.width() != w || renderer.height() != h ||
            renderer.pixels().size() != std::size_t(w) * std::size_t(h))
            fail("view size differs from the one asked", depth, width, rows, address);
        const auto bmp =
            mono ? monoFrameBmp(image, address, 64, 96) : *pictureFrameBmp(image, address, width, rows, depth, colours);
        for (std::int32_t y = 0; y < h; ++y)
            for (std::int32_t x = 0; x < w; ++x) {
                const std::uint32_t pixel = renderer.pixel(x, y);
                if (pixel != kNoDataPixel && pixel != shown(bmp, x, y))
                    fail("view pixel differs from the preview's", depth, width, rows, address);
                const std::int64_t at = pixelAddress({address, depth, width, rows}, x, y);
                if (at < address || at >= address + std::max<std::int64_t>(768, std::int64_t{w} * h * 3))
                    fail("pixel address outside the view's reach", depth, width, rows, address);
                if (pixel == kNoDataPixel && at >= 0 && at + 2 < static_cast<std::int64_t>(image.size()) &&
                    depth != 4 && depth != 1)
                    fail("pixel inside the image shown as no data", depth, width, rows, address);
            }
    }

    try {
        const auto scores = guessWidths(image, address, depth, least, most, colours);
        for (std::size_t i = 0; i < scores.size(); ++i) {
            if (scores[i].width < least || scores[i].width > most || scores[i].score < 0 || scores[i].score > 765)
                fail("width or score out of range", depth, least, most, address);
            if (i > 0 && (scores[i].score < scores[i - 1].score ||
                          (scores[i].score == scores[i - 1].score && scores[i].width < scores[i - 1].width)))
                fail("widths not best first", depth, least, most, address);
        }
    } catch (const WidthGuessError&) {
        if (depth != 1 && viewDepthDrawable(depth) && least >= 1 && most >= least)
            fail("guess refused for a depth and limits it takes", depth, least, most, address);
    } catch (const std::runtime_error&) {
    }
    return 0;
}
