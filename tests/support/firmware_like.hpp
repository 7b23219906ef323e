// A made-up firmware image of the kind the picture scan meets: Thumb-like machine
// code, literal pools and tables of small words, compressed (random) data, texts,
// fill, and raw pictures of every colour depth planted among them, alone or packed
// back to back as resource blocks are. Deterministic for a seed.
#pragma once

#include "pictures/picture_scan.hpp"
#include "pictures/pixel_decode.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zevran::test {

struct PlantedPicture {
    std::int64_t address = 0;
    int depth = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int64_t bytes = 0;  // width x height x depth / 8
};

struct FirmwareLike {
    std::vector<std::uint8_t> image;
    std::vector<PlantedPicture> pictures;  // in address order
};

// `size` bytes; about one picture group every `spacing` bytes. Depth-4 pictures use
// `colours` (the 16-colour table they are drawn with).
FirmwareLike makeFirmwareLike(std::size_t size, std::uint32_t seed, const pictures::ColourTable& colours,
                              std::size_t spacing = std::size_t{48} * 1024);

// The colour table shipped as 16.dat: the 16 classic colours in blue, green, red, 0.
pictures::ColourTable classicColours();

// One picture's bytes at a depth, drawn as a handset picture might be: an icon (flat
// background, filled shapes with outlines) or a shaded scene (gradients, shapes and a
// little grain). `kind` 0 draws an icon, 1 a scene.
std::vector<std::uint8_t> drawPictureBytes(std::int32_t width, std::int32_t height, int depth, int kind,
                                           std::uint32_t seed, const pictures::ColourTable& colours);

// How a scan did on a made image. A picture counts as found when a candidate of its
// depth and width covers at least 80 % of its bytes; a candidate is false when it
// covers no byte of any picture.
struct ScanTally {
    std::size_t pictures = 0;  // planted pictures of 16 x 16 pixels or more
    std::size_t found = 0;     // of those
    std::size_t falseCandidates = 0;
};
ScanTally tallyScan(const FirmwareLike& made, const std::vector<pictures::PictureCandidate>& candidates);

// Byte makers for the rest of an image.
std::vector<std::uint8_t> thumbCode(std::size_t count, std::uint32_t seed);
std::vector<std::uint8_t> wordTable(std::size_t count, std::uint32_t seed);
std::vector<std::uint8_t> asciiTexts(std::size_t count, std::uint32_t seed);

}  // namespace zevran::test
