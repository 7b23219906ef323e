// The pictures of the demo phone file: drawn by code, stored in the handset's pixel
// layouts, one of each depth the picture tab decodes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zevran::cli {

struct DemoPicture {
    std::string name;  // no spaces: it becomes a picture table cell
    std::int32_t width = 0;
    std::int32_t height = 0;
    int depth = 0;
    int frames = 1;
    std::vector<std::uint8_t> bytes;  // every frame, one after another

    std::int64_t frameSize() const { return std::int64_t{width} * height * depth / 8; }
};

// Gradients at 24 and 16 bits, a "Z" logo at 4, a ring at 8, a landscape at 12, a
// smiley in the mono display memory and an 8-frame bouncing ball at 16 bits.
std::vector<DemoPicture> demoPictures();

}  // namespace zevran::cli
