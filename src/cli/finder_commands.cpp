// render and guess-width: the picture finder from the command line, for pictures
// that no table lists yet.
#include "cli_args.hpp"
#include "command.hpp"
#include "output_file.hpp"
#include "phone_argument.hpp"

#include "image/hex_text.hpp"
#include "pictures/picture_finder.hpp"
#include "pictures/picture_frames.hpp"
#include "pictures/picture_player.hpp"
#include "pictures/pixel_decode.hpp"

#include <cstdio>
#include <iostream>

namespace zevran::cli {

namespace {

using namespace zevran::image;
using namespace zevran::pictures;

// --at as typed: an optional 0x, then at most eight hex digits.
std::int64_t atArgument(const std::string& text)
{
    const std::string digits = text.starts_with("0x") || text.starts_with("0X") ? text.substr(2) : text;
    if (digits.empty() || digits.size() > 8 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw UsageError("--at \"" + text + "\" is not a hex address of up to eight digits");
    return static_cast<std::int64_t>(std::stoul(digits, nullptr, 16));
}

std::string where(const std::string& file, std::int64_t address)
{
    return file + ": 0x" + HexPad(static_cast<std::uint32_t>(address), 8);
}

std::string required(const Arguments& args, const std::string& name, const std::string& command)
{
    if (!args.has(name)) throw UsageError(command + " needs " + name);
    return *args.value(name);
}

int runRender(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--at", "--depth", "--width", "--height", "-o"}, {});
    args.expectPositional(1, "render FILE --at HEX --depth D --width W --height H -o OUT.bmp");
    const std::int64_t address = atArgument(required(args, "--at", "render"));
    FrameGeometry geometry;
    geometry.start = address;
    geometry.frames = 1;
    geometry.depth = static_cast<int>(numberArgument(required(args, "--depth", "render"), "--depth"));
    geometry.width = static_cast<std::int32_t>(numberArgument(required(args, "--width", "render"), "--width"));
    geometry.height = static_cast<std::int32_t>(numberArgument(required(args, "--height", "render"), "--height"));
    geometry.frameSize = foundFrameSize(geometry.width, geometry.height, geometry.depth);
    const std::string out = required(args, "-o", "render");
    const std::string& file = args.positional()[0];
    const image::PhoneDocument document = openPhoneFile(file);
    const image::ImageState& state = document.state();
    try {
        // The very frame `picture` shows for a row of this address, size and depth.
        writeOutputFile(out, [&](const std::string& path) {
            if (!decodePreviewFrame(state.FirmwareImage, geometry, address, path, context.home + "/16.dat"))
                throw std::runtime_error("depth " + std::to_string(geometry.depth) + " cannot be drawn");
        });
    } catch (const std::exception& error) {
        throw std::runtime_error(where(file, address) + ": " + error.what());
    }
    return 0;
}

int runGuessWidth(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--at", "--depth", "--min", "--max"}, {});
    args.expectPositional(1, "guess-width FILE --at HEX --depth D [--min N] [--max N]");
    const std::int64_t address = atArgument(required(args, "--at", "guess-width"));
    const int depth = static_cast<int>(numberArgument(required(args, "--depth", "guess-width"), "--depth"));
    const long least = args.has("--min") ? numberArgument(*args.value("--min"), "--min") : kLeastGuessWidth;
    const long most = args.has("--max") ? numberArgument(*args.value("--max"), "--max") : kMostGuessWidth;
    if (least < 1 || most < least || most > kWidestGuess)
        throw UsageError("--min and --max must satisfy 1 <= min <= max <= " + std::to_string(kWidestGuess));
    const std::string& file = args.positional()[0];
    const image::PhoneDocument document = openPhoneFile(file);
    const image::ImageState& state = document.state();
    std::vector<WidthScore> scores;
    try {
        scores = guessWidths(state.FirmwareImage, address, depth, static_cast<std::int32_t>(least),
                             static_cast<std::int32_t>(most), coloursForDepth(depth, context.home + "/16.dat"));
    } catch (const std::exception& error) {
        throw std::runtime_error(where(file, address) + ": " + error.what());
    }
    for (std::size_t i = 0; i < scores.size() && i < 5; ++i) {
        char score[32];
        std::snprintf(score, sizeof score, "%.3f", scores[i].score);
        std::cout << scores[i].width << " " << score << "\n";
    }
    return 0;
}

}  // namespace

std::vector<Command> finderCommands()
{
    return {
        {"render", "FILE --at HEX --depth D --width W --height H -o OUT.bmp",
         "the bytes at an address drawn as a picture of that size and depth, the BMP the preview shows",
         "  --at HEX        the address of the first byte\n"
         "  --depth D       bits a pixel: 1, 4, 8, 12, 16 or 24\n"
         "  --width W       pixels a row\n"
         "  --height H      rows\n"
         "  -o OUT.bmp      the BMP file\n",
         runRender},
        {"guess-width", "FILE --at HEX --depth D [--min N] [--max N]",
         "the five likeliest widths (default 8 to 320) of a picture at an address, best first: WIDTH SCORE",
         "  --at HEX        the address of the picture\n"
         "  --depth D       bits a pixel: 4, 8, 12, 16 or 24\n"
         "  --min N         the narrowest width tried (default 8)\n"
         "  --max N         the widest width tried (default 320, at most 2048)\n",
         runGuessWidth},
    };
}

}  // namespace zevran::cli
