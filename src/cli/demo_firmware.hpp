// The demo phone file that make-demo writes: a made-up firmware image with ring tones,
// text strings and pictures at known places, its picture table and spare tones that
// fit some of its tone slots and not others. Always the same bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::cli {

inline constexpr std::size_t kDemoImageSize = std::size_t{2} * 1024 * 1024;
inline constexpr std::string_view kDemoVersion = "ZV1.11DM";

// One thing placed in the demo image, for the list make-demo prints.
struct PlantedItem {
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    std::string what;
};

struct DemoFile {
    std::string name;
    std::vector<std::uint8_t> bytes;
};

struct DemoFirmware {
    std::vector<std::uint8_t> image;   // demo.bin and demo.asf alike
    std::string pictureTable;          // demo-pictures.txt
    std::vector<DemoFile> spareTones;  // tones/NAME.mmf
    std::vector<PlantedItem> planted;  // in image order
};

// A SMAF tone of exactly `size` bytes: a contents chunk titled `title`, one score
// track whose sequence fills the rest (holding `embedded` in a chunk of its own when
// given), and the CRC. Throws std::invalid_argument when `size` cannot hold all that.
std::vector<std::uint8_t> smafTone(std::string_view title, std::size_t size,
                                   std::span<const std::uint8_t> embedded = {});

DemoFirmware makeDemoFirmware();

}  // namespace zevran::cli
