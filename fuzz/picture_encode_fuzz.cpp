// The picture import's encoder fed with arbitrary geometry and pixels. The first 16
// bytes choose the frame (address, width, height, depth), the picture's size (mostly
// the frame's), whether it carries colour indices, and the image's size; the rest are
// the image, colour table and pixels, repeated as far as needed. The refusals are
// answers; a region must lie in the image, its bytes outside what it shows must be
// the image's, and importing the same picture again over the result changes nothing.
#include "pictures/picture_encode.hpp"
#include "pictures/picture_import.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace zevran::pictures;

namespace {

void fail(const char* what, const FrameLayout& frame)
{
    std::fprintf(stderr, "picture_encode_fuzz: %s (address %lld, %d*%d, depth %d)\n", what,
                 static_cast<long long>(frame.address), frame.width, frame.height, frame.depth);
    std::abort();
}

// The input's bytes after the header, read round and round (zeros when there are none).
class Feed {
public:
    Feed(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    std::uint8_t next()
    {
        if (m_size == 0) return 0;
        const std::uint8_t byte = m_data[m_at];
        m_at = (m_at + 1) % m_size;
        return byte;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_at = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 16) return 0;
    static constexpr int kDepths[16] = {1, 4, 8, 12, 16, 24, 4, 4, 1, 16, 24, 12, 8, 2, 32, 0};
    FrameLayout frame;
    frame.depth = kDepths[data[0] % 16];
    // Mostly small frames; now and then a large or negative dimension.
    frame.width = data[1] == 0xFF ? static_cast<std::int32_t>(data[2] << 16 | data[3] << 8) - 0x800000 : data[1] % 72;
    frame.height = data[4] == 0xFF ? static_cast<std::int32_t>(data[5] << 16 | data[6] << 8) - 0x800000 : data[4] % 100;
    frame.address = static_cast<std::int16_t>(data[7] | data[8] << 8);
    const bool sameSize = data[9] % 8 != 0;
    const bool indexed = data[10] % 2 == 1;
    const std::size_t imageSize = (std::size_t{data[11]} | std::size_t{data[12]} << 8) % 0x2000;
    const std::int64_t otherFrame = data[13] % 4;
    const std::int64_t frameSize = std::int64_t{static_cast<std::int8_t>(data[14])} * 4;

    Feed feed(data + 16, size - 16);
    std::vector<std::uint8_t> image(imageSize);
    for (auto& byte : image) byte = feed.next();
    ColourTable colours{};
    for (auto& byte : colours) byte = feed.next();
    PictureGrid picture;
    picture.width = sameSize ? frame.width : data[15] % 40;
    picture.height = sameSize ? frame.height : data[15] / 40;
    if (picture.width < 0 || picture.height < 0 ||
        std::int64_t{picture.width} * picture.height > std::int64_t{200} * 200)
        return 0;
    const auto pixels = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    picture.rgb.resize(3 * pixels);
    for (auto& byte : picture.rgb) byte = feed.next();
    if (indexed) {
        picture.indices.resize(pixels);
        for (auto& index : picture.indices) index = feed.next() & 0x0F;
    }

    zevran::image::Region region;
    try {
        region = encodePictureFrame(picture, frame, image, colours);
    } catch (const PictureImportError&) {
        return 0;
    }
    // The frame is the picture's size here, so walking it stays quick.
    const std::optional<ShownBytes> shown = shownImageBytes(frame);
    if (!shown || region.first != shown->first || region.last != shown->last)
        fail("region differs from the bytes the frame shows", frame);
    if (region.first < 0 || region.last < region.first || static_cast<std::size_t>(region.last) >= image.size())
        fail("region lies outside the image", frame);
    if (region.bytes.size() != static_cast<std::size_t>(region.last - region.first) + 1)
        fail("region's bytes differ in number from first to last", frame);

    // Over its own result the import is the identity.
    std::vector<std::uint8_t> after = image;
    std::copy(region.bytes.begin(), region.bytes.end(), after.begin() + region.first);
    if (encodePictureFrame(picture, frame, after, colours).bytes != region.bytes)
        fail("importing the picture again changed bytes", frame);

    // The same picture into two frames of a row, composed in either order.
    FrameGeometry geometry;
    geometry.start = frame.address;
    geometry.frameSize = frameSize;
    geometry.frames = 4;
    geometry.width = frame.width;
    geometry.height = frame.height;
    geometry.depth = frame.depth;
    RowImport import(image, geometry, colours);
    try {
        import.importFrame(otherFrame, picture);
        import.importFrame(0, picture);
    } catch (const PictureImportError&) {
        return 0;
    }
    for (const auto& frameRegion : import.regions()) {
        if (frameRegion.first < 0 || static_cast<std::size_t>(frameRegion.last) >= image.size() ||
            frameRegion.bytes.size() != static_cast<std::size_t>(frameRegion.last - frameRegion.first) + 1)
            fail("row import region lies outside the image", frame);
    }
    return 0;
}
