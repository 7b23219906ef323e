#include "firmware_like.hpp"

#include "pictures/picture_encode.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace zevran::test {

namespace {

// A small fixed generator (xorshift), the same on every machine.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : m_state(seed * 2654435761u + 0x9E3779B9u) {}
    std::uint32_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 17;
        m_state ^= m_state << 5;
        return m_state;
    }
    // From `least` to `most`, both included.
    int between(int least, int most)
    {
        return least + static_cast<int>(next() % static_cast<std::uint32_t>(most - least + 1));
    }
    std::uint8_t byte() { return static_cast<std::uint8_t>(next() >> 24); }

private:
    std::uint32_t m_state;
};

struct Rgb {
    int red, green, blue;
};

std::uint8_t clampChannel(double value) { return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0)); }

Rgb randomColour(Dice& dice) { return {dice.byte(), dice.byte(), dice.byte()}; }

// A shape over the picture: an ellipse or a rectangle with a darker outline.
struct Shape {
    bool ellipse;
    double cx, cy, rx, ry;
    Rgb fill;
    int fillIndex;

    // 0 outside, 1 on the outline, 2 inside.
    int cover(double x, double y) const
    {
        const double dx = (x - cx) / rx, dy = (y - cy) / ry;
        const double d = ellipse ? std::sqrt(dx * dx + dy * dy) : std::max(std::abs(dx), std::abs(dy));
        const double edge = 1.2 / std::min(rx, ry);
        return d > 1 ? 0 : d > 1 - edge ? 1 : 2;
    }
};

std::vector<Shape> randomShapes(Dice& dice, std::int32_t width, std::int32_t height)
{
    std::vector<Shape> shapes;
    const int count = dice.between(1, 4);
    for (int i = 0; i < count; ++i) {
        Shape shape;
        shape.ellipse = dice.next() & 1;
        shape.cx = dice.between(0, width - 1);
        shape.cy = dice.between(0, height - 1);
        shape.rx = std::max(2, dice.between(width / 6, width / 2));
        shape.ry = std::max(2, dice.between(height / 6, height / 2));
        shape.fill = randomColour(dice);
        shape.fillIndex = dice.between(0, 15);
        shapes.push_back(shape);
    }
    return shapes;
}

pictures::PictureGrid drawGrid(std::int32_t width, std::int32_t height, int depth, int kind, Dice& dice)
{
    pictures::PictureGrid grid;
    grid.width = width;
    grid.height = height;
    const auto shapes = randomShapes(dice, width, height);
    const Rgb base = randomColour(dice);
    const int backgroundIndex = dice.between(0, 15);
    // A scene's shading: a gradient across and down, and a little grain.
    const double gx = kind == 1 ? (dice.between(-160, 160)) / static_cast<double>(width) : 0;
    const double gy = kind == 1 ? (dice.between(-160, 160)) / static_cast<double>(height) : 0;
    const int grain = kind == 1 ? 6 : 0;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            Rgb colour = base;
            int index = backgroundIndex;
            for (const Shape& shape : shapes) {
                const int cover = shape.cover(x, y);
                if (cover == 2) colour = shape.fill, index = shape.fillIndex;
                if (cover == 1) colour = {shape.fill.red / 3, shape.fill.green / 3, shape.fill.blue / 3}, index = 0;
            }
            const double shade = gx * x + gy * y + (grain ? dice.between(-grain, grain) : 0);
            grid.rgb.push_back(clampChannel(colour.red + shade));
            grid.rgb.push_back(clampChannel(colour.green + shade));
            grid.rgb.push_back(clampChannel(colour.blue + shade));
            grid.indices.push_back(static_cast<std::uint8_t>(index));
        }
    }
    if (depth != 4) grid.indices.clear();
    return grid;
}

void append(std::vector<std::uint8_t>& to, const std::vector<std::uint8_t>& bytes)
{
    to.insert(to.end(), bytes.begin(), bytes.end());
}

}  // namespace

pictures::ColourTable classicColours()
{
    static constexpr std::array<std::array<std::uint8_t, 3>, 16> kRgb = {{
        {0, 0, 0},
        {128, 0, 0},
        {0, 128, 0},
        {128, 128, 0},
        {0, 0, 128},
        {128, 0, 128},
        {0, 128, 128},
        {192, 192, 192},
        {128, 128, 128},
        {255, 0, 0},
        {0, 255, 0},
        {255, 255, 0},
        {0, 0, 255},
        {255, 0, 255},
        {0, 255, 255},
        {255, 255, 255},
    }};
    pictures::ColourTable table{};
    for (std::size_t i = 0; i < kRgb.size(); ++i) {
        table[4 * i] = kRgb[i][2];
        table[4 * i + 1] = kRgb[i][1];
        table[4 * i + 2] = kRgb[i][0];
    }
    return table;
}

std::vector<std::uint8_t> drawPictureBytes(std::int32_t width, std::int32_t height, int depth, int kind,
                                           std::uint32_t seed, const pictures::ColourTable& colours)
{
    Dice dice(seed);
    const pictures::PictureGrid grid = drawGrid(width, height, depth, kind, dice);
    const auto size = static_cast<std::size_t>(std::int64_t{width} * height * depth / 8);
    const std::vector<std::uint8_t> blank(size, 0);
    return pictures::encodePictureFrame(grid, {0, width, height, depth}, blank, colours).bytes;
}

std::vector<std::uint8_t> thumbCode(std::size_t count, std::uint32_t seed)
{
    // High bytes of common 16-bit instructions: moves and compares of immediates,
    // loads and stores, push and pop, branches, the halves of a long branch.
    static constexpr std::array<std::uint8_t, 24> kHigh = {0x20, 0x21, 0x28, 0x1C, 0x46, 0x68, 0x60, 0x69,
                                                           0x61, 0x78, 0x70, 0x4A, 0xB5, 0xBD, 0xF0, 0xF8,
                                                           0xF7, 0xFF, 0xD0, 0xD1, 0xE0, 0xE7, 0x18, 0x40};
    Dice dice(seed);
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < count) {
        for (int i = dice.between(8, 40); i > 0; --i) {
            bytes.push_back(dice.byte());
            bytes.push_back(kHigh[dice.next() % kHigh.size()]);
        }
        // A literal pool: addresses in flash and RAM.
        for (int i = dice.between(0, 4); i > 0; --i) {
            const std::uint32_t word = (dice.next() & 1 ? 0x08000000u : 0x20000000u) | (dice.next() & 0x3FFFFC);
            for (int b = 0; b < 4; ++b) bytes.push_back(static_cast<std::uint8_t>(word >> (8 * b)));
        }
    }
    bytes.resize(count);
    return bytes;
}

std::vector<std::uint8_t> wordTable(std::size_t count, std::uint32_t seed)
{
    Dice dice(seed);
    std::vector<std::uint8_t> bytes;
    const bool pointers = dice.next() & 1;
    std::uint32_t word = pointers ? 0x08100000u + (dice.next() & 0xFFFF0) : 0;
    while (bytes.size() < count) {
        word = pointers ? (word + static_cast<std::uint32_t>(dice.between(4, 400))) & ~3u
                        : static_cast<std::uint32_t>(dice.between(0, 4095));
        for (int b = 0; b < 4; ++b) bytes.push_back(static_cast<std::uint8_t>(word >> (8 * b)));
    }
    bytes.resize(count);
    return bytes;
}

std::vector<std::uint8_t> asciiTexts(std::size_t count, std::uint32_t seed)
{
    static constexpr std::array<std::string_view, 16> kWords = {
        "Settings", "Call",  "Messages", "Ringtone", "Volume", "Network", "Phone book",  "Alarm",
        "Clock",    "Games", "Display",  "Cancel",   "OK",     "Delete",  "Please wait", "Battery low"};
    Dice dice(seed);
    const bool wide = dice.next() & 1;  // UTF-16 texts, every character followed by 0
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < count) {
        for (int i = dice.between(1, 4); i > 0; --i) {
            for (char c : kWords[dice.next() % kWords.size()]) {
                bytes.push_back(static_cast<std::uint8_t>(c));
                if (wide) bytes.push_back(0);
            }
            bytes.push_back(' ');
            if (wide) bytes.push_back(0);
        }
        bytes.push_back(0);
        if (wide) bytes.push_back(0);
    }
    bytes.resize(count);
    return bytes;
}

FirmwareLike makeFirmwareLike(std::size_t size, std::uint32_t seed, const pictures::ColourTable& colours,
                              std::size_t spacing)
{
    static constexpr std::array<int, 5> kDepths = {4, 8, 12, 16, 24};
    Dice dice(seed);
    FirmwareLike made;
    auto& image = made.image;
    image.reserve(size + std::size_t{256} * 1024);
    while (image.size() < size) {
        // What lies between picture groups.
        for (std::size_t filler = 0, want = spacing / 2 + dice.next() % spacing; filler < want;) {
            const std::size_t length = static_cast<std::size_t>(dice.between(256, 16 * 1024));
            const std::uint32_t part = dice.next();
            switch (dice.between(0, 9)) {
            case 0:
            case 1:
            case 2: append(image, thumbCode(length, part)); break;
            case 3:
            case 4:
                for (std::size_t i = 0; i < length; ++i) image.push_back(dice.byte());
                break;
            case 5:
            case 6: append(image, asciiTexts(length, part)); break;
            case 7: image.insert(image.end(), length, dice.next() & 1 ? 0xFF : 0x00); break;
            default: append(image, wordTable(length, part)); break;
            }
            filler += length;
        }
        // A group of one to four pictures, back to back, each at a word boundary.
        for (int i = dice.between(1, 4); i > 0; --i) {
            while (image.size() % 4) image.push_back(0);
            PlantedPicture picture;
            picture.depth = kDepths[dice.next() % kDepths.size()];
            const bool small = dice.between(0, 9) == 0;
            picture.width = small ? dice.between(8, 15) : dice.between(16, 128);
            picture.height = dice.between(small ? 8 : 16, 128);
            if (picture.depth == 4 || picture.depth == 12) picture.width &= ~1;
            picture.address = static_cast<std::int64_t>(image.size());
            const auto bytes = drawPictureBytes(picture.width, picture.height, picture.depth, dice.between(0, 1),
                                                dice.next(), colours);
            picture.bytes = static_cast<std::int64_t>(bytes.size());
            append(image, bytes);
            made.pictures.push_back(picture);
        }
    }
    // Pictures cut by the end are no longer whole: they are dropped from the list.
    image.resize(size);
    std::erase_if(made.pictures,
                  [&](const PlantedPicture& p) { return p.address + p.bytes > static_cast<std::int64_t>(size); });
    return made;
}

ScanTally tallyScan(const FirmwareLike& made, const std::vector<pictures::PictureCandidate>& candidates)
{
    ScanTally tally;
    const auto shared = [](std::int64_t a, std::int64_t aBytes, std::int64_t b, std::int64_t bBytes) {
        return std::max<std::int64_t>(0, std::min(a + aBytes, b + bBytes) - std::max(a, b));
    };
    for (const PlantedPicture& picture : made.pictures) {
        if (picture.width < 16 || picture.height < 16) continue;
        ++tally.pictures;
        tally.found += std::any_of(candidates.begin(), candidates.end(), [&](const pictures::PictureCandidate& c) {
            return c.depth == picture.depth && c.width == picture.width &&
                   shared(c.address, pictures::candidateBytes(c), picture.address, picture.bytes) * 5 >=
                       picture.bytes * 4;
        });
    }
    for (const pictures::PictureCandidate& c : candidates)
        tally.falseCandidates += std::none_of(made.pictures.begin(), made.pictures.end(), [&](const PlantedPicture& p) {
            return shared(c.address, pictures::candidateBytes(c), p.address, p.bytes) > 0;
        });
    return tally;
}

}  // namespace zevran::test
