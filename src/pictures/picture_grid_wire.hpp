// A picture's plain pixels as bytes, the way zevran-picture-reader hands a picture it
// read through Qt to zevran-cli, which loads no Qt library of its own.
#pragma once

#include "picture_encode.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace zevran::pictures {

// "ZPG1", width and height (32-bit little-endian), 1 when indices follow (else 0), the
// red, green, blue bytes of every pixel, then one index a pixel when there are indices.
std::string pictureGridBytes(const PictureGrid& picture);

// The picture those bytes hold; nullopt for bytes of any other shape.
std::optional<PictureGrid> pictureGridFromBytes(std::string_view bytes);

}  // namespace zevran::pictures
