#include "demo_pictures.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string_view>

namespace zevran::cli {

namespace {

using Bytes = std::vector<std::uint8_t>;

// Channels from 0 to 1, quantised per depth when stored.
struct Rgb {
    double r = 0, g = 0, b = 0;
};

using Painter = std::function<Rgb(int x, int y)>;

unsigned level(double value, unsigned top)
{
    return static_cast<unsigned>(std::lround(std::clamp(value, 0.0, 1.0) * top));
}

Rgb mix(Rgb a, Rgb b, double t) { return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t}; }

Rgb hue(double h)
{
    const double k = std::fmod(h, 1.0) * 6;
    auto channel = [k](double n) { return std::clamp(std::abs(std::fmod(k + n, 6.0) - 3) - 1, 0.0, 1.0); };
    return {channel(0), channel(4), channel(2)};
}

double distance(int x, int y, double cx, double cy) { return std::hypot(x + 0.5 - cx, y + 0.5 - cy); }

// Pixels row by row from the top, each in the handset's layout for its depth.
Bytes storePixels(int width, int height, int depth, const Painter& paint)
{
    Bytes out;
    out.reserve(static_cast<std::size_t>(width * height * depth / 8));
    unsigned pending = 0;  // depth 12: the first pixel of a pair waits for the second
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Rgb c = paint(x, y);
            switch (depth) {
            case 24:  // blue, green, red
                out.insert(out.end(),
                           {static_cast<std::uint8_t>(level(c.b, 255)), static_cast<std::uint8_t>(level(c.g, 255)),
                            static_cast<std::uint8_t>(level(c.r, 255))});
                break;
            case 16: {  // 5-6-5 with red on top, low byte first
                const unsigned v = level(c.r, 31) << 11 | level(c.g, 63) << 5 | level(c.b, 31);
                out.insert(out.end(), {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8)});
                break;
            }
            case 12: {  // 4-4-4, two pixels in three bytes, the first in the high bits
                const unsigned v = level(c.r, 15) << 8 | level(c.g, 15) << 4 | level(c.b, 15);
                if ((y * width + x) % 2 == 0) {
                    pending = v;
                } else {
                    const unsigned pair = pending << 12 | v;
                    out.insert(out.end(), {static_cast<std::uint8_t>(pair >> 16), static_cast<std::uint8_t>(pair >> 8),
                                           static_cast<std::uint8_t>(pair)});
                }
                break;
            }
            case 8:  // blue in bits 7-5, green in 4-2, red in 1-0
                out.push_back(static_cast<std::uint8_t>(level(c.b, 7) << 5 | level(c.g, 7) << 2 | level(c.r, 3)));
                break;
            }
        }
    return out;
}

// Depth 4 holds indexes into the 16-colour table, the left pixel in the high nibble.
Bytes storeIndexes(int width, int height, const std::function<int(int x, int y)>& index)
{
    Bytes out;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; x += 2)
            out.push_back(static_cast<std::uint8_t>((index(x, y) & 0xF) << 4 | (index(x + 1, y) & 0xF)));
    return out;
}

// The 96 x 64 display memory showing a 64 x 96 picture as the picture tab's BMP shows
// it, BMP row y being display column y: the screen turned a quarter to the right.
Bytes storeMono(const std::function<bool(int x, int y)>& lit)
{
    // 8 pages of 8 pixel rows, page byte at page * 96 + column, lowest bit the page's top row.
    Bytes memory(768, 0);
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 64; ++x)
            if (lit(x, y)) {
                const int row = 63 - x;
                memory[static_cast<std::size_t>(row / 8) * 96 + static_cast<std::size_t>(y)] |=
                    static_cast<std::uint8_t>(1u << (row % 8));
            }
    return memory;
}

// Capitals of 5 x 7 dots, bit 4 the left column.
bool glyphDot(char c, int column, int row)
{
    static constexpr std::string_view kLetters = "ADEMNORVZ";
    static constexpr std::array<std::array<std::uint8_t, 7>, 9> kGlyphs = {{
        {0x0E, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11},  // A
        {0x1E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x1E},  // D
        {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F},  // E
        {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11},  // M
        {0x11, 0x19, 0x15, 0x13, 0x11, 0x11, 0x11},  // N
        {0x0E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E},  // O
        {0x1E, 0x11, 0x11, 0x1E, 0x14, 0x12, 0x11},  // R
        {0x11, 0x11, 0x11, 0x11, 0x11, 0x0A, 0x04},  // V
        {0x1F, 0x01, 0x02, 0x04, 0x08, 0x10, 0x1F},  // Z
    }};
    const auto at = kLetters.find(c);
    if (at == std::string_view::npos || column < 0 || column > 4 || row < 0 || row > 6) return false;
    return (kGlyphs[at][static_cast<std::size_t>(row)] >> (4 - column)) & 1;
}

// Whether (x, y) falls on `text` written from (left, top), `scale` pixels a dot.
bool onText(std::string_view text, int left, int top, int scale, int x, int y)
{
    if (x < left || y < top) return false;
    const int cell = 6 * scale;
    const auto index = static_cast<std::size_t>((x - left) / cell);
    if (index >= text.size()) return false;
    return glyphDot(text[index], (x - left) % cell / scale, (y - top) / scale);
}

DemoPicture gradient24()
{
    // Blue, red, cyan and yellow corners.
    const Rgb corners[4] = {{0, 0.2, 1}, {1, 0.1, 0.2}, {0, 0.9, 0.9}, {1, 0.95, 0}};
    auto paint = [&](int x, int y) {
        const double u = x / 127.0, v = y / 159.0;
        return mix(mix(corners[0], corners[1], u), mix(corners[2], corners[3], u), v);
    };
    return {"gradient24", 128, 160, 24, 1, storePixels(128, 160, 24, paint)};
}

DemoPicture rainbow16()
{
    // Hues across, fading to black downwards.
    auto paint = [](int x, int y) { return mix(hue(x / 128.0), Rgb{}, y / 170.0); };
    return {"rainbow16", 128, 160, 16, 1, storePixels(128, 160, 16, paint)};
}

DemoPicture logo4()
{
    // A bold yellow "Z" with a red shadow on dark blue inside a white frame (table colours 1, 12, 14, 15).
    auto onZ = [](int x, int y) {
        if (x < 16 || x >= 80 || y < 16 || y >= 80) return false;
        if (y < 30 || y >= 66) return true;
        const double centre = 79 - (y - 30) * (63.0 / 36);
        return std::abs(x - centre) < 10;
    };
    auto index = [&](int x, int y) {
        if (x < 4 || y < 4 || x >= 92 || y >= 92) return 15;
        if (onZ(x, y)) return 14;
        if (onZ(x - 4, y - 4)) return 12;
        return 1;
    };
    return {"logo_z4", 96, 96, 4, 1, storeIndexes(96, 96, index)};
}

DemoPicture ring8()
{
    // An orange ring round a white dot on navy that lightens downwards.
    auto paint = [](int x, int y) {
        const double d = distance(x, y, 48, 48);
        if (d < 10) return Rgb{1, 1, 1};
        if (d >= 26 && d < 42) return mix(Rgb{1, 0.85, 0}, Rgb{1, 0.3, 0}, (d - 26) / 16);
        return mix(Rgb{0, 0, 0.3}, Rgb{0.2, 0.4, 1}, y / 95.0);
    };
    return {"ring8", 96, 96, 8, 1, storePixels(96, 96, 8, paint)};
}

DemoPicture landscape12()
{
    // Sun over green hills under a sky that pales towards the horizon.
    auto paint = [](int x, int y) {
        const double hill = 52 + 6 * std::sin(x / 9.0) + 3 * std::sin(x / 4.0 + 1);
        if (y >= hill) return mix(Rgb{0.2, 0.8, 0.2}, Rgb{0, 0.3, 0}, (y - hill) / (80 - hill));
        if (distance(x, y, 58, 20) < 10) return Rgb{1, 0.9, 0.1};
        return mix(Rgb{0, 0.2, 0.7}, Rgb{0.6, 0.85, 1}, y / 60.0);
    };
    return {"landscape12", 80, 80, 12, 1, storePixels(80, 80, 12, paint)};
}

DemoPicture smiley1()
{
    auto lit = [](int x, int y) {
        const double d = distance(x, y, 32, 30);
        const bool face = d >= 22 && d < 25.5;
        const bool eyes = distance(x, y, 23, 22) < 3.5 || distance(x, y, 41, 22) < 3.5;
        const bool smile = d >= 12 && d < 15 && y > 33;
        return face || eyes || smile || onText("DEMO", 9, 62, 2, x, y) || onText("ZEVRAN", 15, 82, 1, x, y);
    };
    return {"smiley1", 64, 96, 1, 1, storeMono(lit)};
}

DemoPicture ball16()
{
    // Eight frames of a red ball hopping across, from grass to grass.
    constexpr int kFrames = 8;
    Bytes frames;
    for (int k = 0; k < kFrames; ++k) {
        const double t = k / (kFrames - 1.0);
        const double bx = 9 + 46 * t, by = 44 - 120 * t * (1 - t);
        auto paint = [&](int x, int y) {
            if (distance(x, y, bx - 2.5, by - 2.5) < 2.5) return Rgb{1, 1, 1};
            if (distance(x, y, bx, by) < 8) return Rgb{0.9, 0.05, 0.05};
            if (y >= 52) {
                const bool shadow = std::abs(x + 0.5 - bx) < 7 - (44 - by) / 8 && y < 55;
                return shadow ? Rgb{0, 0.35, 0} : Rgb{0.1, 0.7, 0.1};
            }
            return mix(Rgb{0.3, 0.6, 1}, Rgb{0.8, 0.9, 1}, y / 52.0);
        };
        const Bytes frame = storePixels(64, 64, 16, paint);
        frames.insert(frames.end(), frame.begin(), frame.end());
    }
    return {"ball16", 64, 64, 16, kFrames, frames};
}

}  // namespace

std::vector<DemoPicture> demoPictures()
{
    return {gradient24(), rainbow16(), logo4(), ring8(), landscape12(), smiley1(), ball16()};
}

}  // namespace zevran::cli
