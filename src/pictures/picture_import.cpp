#include "picture_import.hpp"

#include <algorithm>
#include <filesystem>

namespace zevran::pictures {

namespace {

bool overlaps(const image::Region& a, std::int64_t first, std::int64_t last)
{
    return a.first <= last && first <= a.last;
}

// Copies the bytes of `source` that fall inside `target`'s range over it; `target`
// starts at `targetFirst`.
void overlay(std::vector<std::uint8_t>& target, std::int64_t targetFirst, const image::Region& source)
{
    const std::int64_t targetLast = targetFirst + static_cast<std::int64_t>(target.size()) - 1;
    const std::int64_t from = std::max<std::int64_t>(source.first, targetFirst);
    const std::int64_t to = std::min<std::int64_t>(source.last, targetLast);
    for (std::int64_t at = from; at <= to; ++at)
        target[static_cast<std::size_t>(at - targetFirst)] = source.bytes[static_cast<std::size_t>(at - source.first)];
}

}  // namespace

RowImport::RowImport(std::span<const std::uint8_t> image, const FrameGeometry& geometry, const ColourTable& colours)
    : m_image(image), m_geometry(geometry), m_colours(colours)
{
}

FrameLayout RowImport::layoutOf(std::int64_t frame) const
{
    return {frameAddress(m_geometry, frame), m_geometry.width, m_geometry.height, m_geometry.depth};
}

void requireFrameOfRow(const FrameGeometry& geometry, std::int64_t frame)
{
    if (frame < 0 || frame >= geometry.frames)
        throw PictureImportError(ImportRefusal::NoSuchFrame,
                                 {std::to_string(frame + 1), std::to_string(geometry.frames)});
}

std::int64_t RowImport::importFrame(std::int64_t frame, const PictureGrid& picture)
{
    requireFrameOfRow(m_geometry, frame);
    const FrameLayout layout = layoutOf(frame);
    // Every check, against the image as it is: which pixels clash and which bytes are
    // shown do not depend on what the frames before left in the image.
    EncodedFrame encoded = encodePictureFrameCounted(picture, layout, m_image, m_colours);
    image::Region& region = encoded.region;
    const bool shared = std::any_of(m_regions.begin(), m_regions.end(), [&](const image::Region& earlier) {
        return overlaps(earlier, region.first, region.last);
    });
    if (shared) {
        // Again over the bytes as the earlier frames left them. The copy starts at an
        // even address: the 4-bit rows round half-way indices to even, so an even shift
        // moves every index by exactly the shift.
        const std::int64_t base = region.first - region.first % 2;
        std::vector<std::uint8_t> bytes(m_image.begin() + base, m_image.begin() + region.last + 1);
        for (const image::Region& earlier : m_regions) overlay(bytes, base, earlier);
        FrameLayout shifted = layout;
        shifted.address -= base;
        region.bytes = encodePictureFrame(picture, shifted, bytes, m_colours).bytes;
    }
    m_regions.push_back(std::move(region));
    m_unstoredPixels += encoded.unstoredPixels;
    return encoded.unstoredPixels;
}

std::vector<image::Region> RowImport::regions() const
{
    std::vector<image::Region> result = m_regions;
    for (std::size_t i = 0; i < result.size(); ++i)
        for (std::size_t j = i + 1; j < m_regions.size(); ++j)
            if (overlaps(m_regions[j], result[i].first, result[i].last))
                overlay(result[i].bytes, result[i].first, m_regions[j]);
    return result;
}

std::optional<std::string> exportedFramePicture(std::string_view folder, std::string_view name, std::int64_t frameIndex)
{
    const std::string bmp = pictureFramePath(folder, name, frameIndex);
    std::error_code error;
    if (std::filesystem::is_regular_file(bmp, error)) return bmp;
    const std::string png = bmp.substr(0, bmp.size() - 4) + ".png";
    if (std::filesystem::is_regular_file(png, error)) return png;
    return std::nullopt;
}

}  // namespace zevran::pictures
