#include "picture_grid_wire.hpp"

#include <cstdint>

namespace zevran::pictures {

namespace {

constexpr std::string_view kMagic = "ZPG1";
constexpr std::size_t kHeaderSize = 4 + 4 + 4 + 1;

void putLittleEndian(std::string& out, std::int32_t value)
{
    const auto bits = static_cast<std::uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>(bits >> shift);
}

std::int32_t littleEndianAt(std::string_view bytes, std::size_t at)
{
    std::uint32_t bits = 0;
    for (int k = 3; k >= 0; --k) bits = bits << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(k)]);
    return static_cast<std::int32_t>(bits);
}

}  // namespace

std::string pictureGridBytes(const PictureGrid& picture)
{
    std::string out(kMagic);
    putLittleEndian(out, picture.width);
    putLittleEndian(out, picture.height);
    out += picture.indices.empty() ? '\0' : '\1';
    out.append(picture.rgb.begin(), picture.rgb.end());
    out.append(picture.indices.begin(), picture.indices.end());
    return out;
}

std::optional<PictureGrid> pictureGridFromBytes(std::string_view bytes)
{
    if (bytes.size() < kHeaderSize || bytes.substr(0, 4) != kMagic) return std::nullopt;
    PictureGrid picture;
    picture.width = littleEndianAt(bytes, 4);
    picture.height = littleEndianAt(bytes, 8);
    const auto flag = static_cast<unsigned char>(bytes[12]);
    if (picture.width < 0 || picture.height < 0 || flag > 1) return std::nullopt;
    const std::uint64_t pixels =
        std::uint64_t{static_cast<std::uint32_t>(picture.width)} * static_cast<std::uint32_t>(picture.height);
    if (bytes.size() - kHeaderSize != pixels * (flag ? 4 : 3)) return std::nullopt;
    const std::string_view rgb = bytes.substr(kHeaderSize, static_cast<std::size_t>(pixels * 3));
    picture.rgb.assign(rgb.begin(), rgb.end());
    if (flag) {
        const std::string_view indices = bytes.substr(kHeaderSize + rgb.size());
        picture.indices.assign(indices.begin(), indices.end());
    }
    return picture;
}

}  // namespace zevran::pictures
