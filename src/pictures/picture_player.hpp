// The picture player's arithmetic: which frame a step or an animation tick shows,
// where that frame lies, and the temporary BMP through which the preview shows it.
#pragma once

#include "image/failure.hpp"

#include "picture_frames.hpp"
#include "pixel_decode.hpp"

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zevran::pictures {

// The player counts frames in 16 bits; a frame's address is a 32-bit signed number.
using FrameNumber = std::int16_t;

// A frame number past the 16-bit counter, or a frame whose address leaves 32 bits.
class PlayerOverflow : public image::TypedError<std::overflow_error> {
public:
    using TypedError::TypedError;
};

// current + delta. No bound of the picture applies: stepping past its last frame
// shows the bytes that follow it, stepping below frame 0 the bytes before it.
// Throws PlayerOverflow outside -32768..32767.
FrameNumber steppedFrame(FrameNumber current, int delta);

// The address of frame `frame` of a row. Throws PlayerOverflow when it leaves the
// 32-bit signed range.
std::int32_t shownFrameAddress(const FrameGeometry& geometry, FrameNumber frame);

// "0x" and the address in upper-case hex without a fixed width; a negative address
// shows its 32-bit two's complement.
std::string frameAddressText(std::int32_t address);

// The frame's ordinal as the player shows it: frame + 1.
std::string frameOrdinalText(FrameNumber frame);

// One tick of the animation.
struct AnimationTick {
    FrameNumber show = 0;  // the frame to show now
    FrameNumber next = 0;  // the current frame after the tick
    bool stop = false;     // the last frame has been shown and the player does not repeat
};

// While frames remain, a tick shows the current one and moves on. After the last,
// it shows frame 0 again and either stops or, repeating, goes on with frame 1, so
// frame 0 is shown once a loop. Throws PlayerOverflow when the counter would pass 32767.
AnimationTick animationTick(FrameNumber current, std::int64_t frameCount, bool repeat);

// The temporary BMP in `folder` (the program folder): "temp.bmp" for a chosen row,
// "temp" + the frame number + ".bmp" for an animation tick.
std::string previewFilePath(std::string_view folder);
std::string animationFilePath(std::string_view folder, FrameNumber frame);

// The colour table a depth needs: "16.dat" (`colourTablePath`) read for depth 4 only;
// every other depth gets an empty table and leaves the file alone.
ColourTable coloursForDepth(int depth, const std::string& colourTablePath);

// Writes the frame at `address` to `path` as the preview shows it: depth 1 through
// the mono display memory, any other depth through the colour decoder. False, and no
// file, for a depth the decoder refuses. Throws as the decoders do.
bool decodePreviewFrame(std::span<const std::uint8_t> image, const FrameGeometry& geometry, std::int64_t address,
                        const std::string& path, const std::string& colourTablePath);

}  // namespace zevran::pictures
