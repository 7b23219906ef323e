// Finding the SMAF ring tones stored unaligned inside the firmware image.
#pragma once

#include "image/firmware_image.hpp"

#include <cstdint>
#include <functional>
#include <istream>
#include <span>
#include <string>
#include <vector>

namespace zevran::tones {

// One row of the tone list; every cell is text, as the list shows it.
struct ToneSlot {
    std::string number;  // "001", "002", ... "1000"
    std::string start;   // "0x0012A3F0": offset of the signature's first "M"
    std::string end;     // offset of the tone's last byte, same form
    std::string size;    // decimal byte count of the whole SMAF file
    std::string note;    // the user's note; empty after a scan
};

// Hex text of the SMAF file chunk id "MMMD".
inline constexpr std::string_view kToneSignature = "4D4D4D44";
inline constexpr std::int64_t kSmallestTone = 101;
inline constexpr std::int64_t kLargestTone = 99999;

// Walks the image for every signature after the shared LastMatch, in one pass, and
// keeps those whose declared size (body length + 8) lies in 101..99999. A signature
// inside an accepted tone is examined too. Leaves LastMatch at 0, as any search that
// runs to the image's end does. `onMatch` hears the offset of each signature found.
std::vector<ToneSlot> scanTones(image::ImageState& state, const std::function<void(std::int32_t)>& onMatch = {});

// Examines the signatures starting at indices `from` to `end` - 1 of `bytes`, whose
// first byte lies at image offset `offset`, appending the tones to `rows`. A signature
// whose length field lies past the end of `bytes` is no tone. Returns the index of the
// last signature seen, or image::kNotFound.
std::size_t scanToneSignatures(std::span<const std::uint8_t> bytes, std::int64_t offset, std::size_t from,
                               std::size_t end, std::vector<ToneSlot>& rows,
                               const std::function<void(std::int64_t)>& onMatch = {});

struct ToneStreamScan {
    std::vector<ToneSlot> rows;
    std::int64_t imageBytes = 0;
};

// The rows of a fresh scan of a whole phone file read chunk by chunk, so that a large
// file is never held: the same rows as scanTones over the loaded image.
ToneStreamScan scanToneStream(std::istream& in, std::size_t chunkBytes = 1 << 20);

}  // namespace zevran::tones
