// find-pictures: every picture of the image in one pass, as candidates for the
// picture table.
#include "cli_args.hpp"
#include "command.hpp"
#include "phone_argument.hpp"
#include "picture_rows.hpp"

#include "image/hex_text.hpp"
#include "pictures/picture_player.hpp"
#include "pictures/picture_scan.hpp"

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace zevran::cli {

namespace {

using namespace zevran::pictures;

// --from and --to as typed: an optional 0x, then at most eight hex digits.
std::int64_t rangeArgument(const std::string& text, const std::string& what)
{
    const std::string digits = text.starts_with("0x") || text.starts_with("0X") ? text.substr(2) : text;
    if (digits.empty() || digits.size() > 8 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw UsageError(what + " \"" + text + "\" is not a hex address of up to eight digits");
    return static_cast<std::int64_t>(std::stoul(digits, nullptr, 16));
}

std::string hex(std::int64_t address) { return "0x" + image::HexPad(static_cast<std::uint32_t>(address), 8); }

std::string failureText(const ScanFailure& failure, std::size_t imageSize)
{
    const std::string size = " (the image holds " + std::to_string(imageSize) + " bytes)";
    switch (failure.reason) {
    case ScanRefusal::FirstOutsideImage: return "--from " + hex(failure.value) + " lies outside the image" + size;
    case ScanRefusal::LastOutsideImage: return "--to " + hex(failure.value) + " lies outside the image" + size;
    case ScanRefusal::RangeReversed: return "--to " + hex(failure.value) + " lies before --from";
    case ScanRefusal::DepthNotScanned:
        return "depth " + std::to_string(failure.value) + " is not scanned (4, 8, 12, 16 and 24 are)";
    }
    return "the scan failed";
}

void printLines(const std::vector<PictureCandidate>& candidates, bool withKnown)
{
    for (const PictureCandidate& c : candidates) {
        char line[96];
        std::snprintf(line, sizeof line, "0x%08X %d %d %d %.3f", static_cast<unsigned>(c.address), c.depth, c.width,
                      c.height, c.score);
        std::cout << line << (withKnown && c.known ? " known" : "") << "\n";
    }
}

void printJson(const std::vector<PictureCandidate>& candidates, bool withKnown)
{
    std::cout << "[";
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const PictureCandidate& c = candidates[i];
        char object[160];
        std::snprintf(object, sizeof object,
                      "{\"address\": %lld, \"depth\": %d, \"width\": %d, \"height\": %d, \"score\": %.3f",
                      static_cast<long long>(c.address), c.depth, c.width, c.height, c.score);
        std::cout << (i ? ",\n " : "") << object
                  << (withKnown ? (c.known ? ", \"known\": true" : ", \"known\": false") : "") << "}";
    }
    std::cout << "]\n";
}

int runFindPictures(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--from", "--to", "--table"}, {"--json"}, {"--depth"});
    args.expectPositional(1, "find-pictures FILE [--depth D]... [--from HEX] [--to HEX] [--json] [--table TABLE]");
    ScanRequest request;
    if (args.has("--depth")) {
        request.depths.clear();
        for (const std::string& depth : args.values("--depth"))
            request.depths.push_back(static_cast<int>(numberArgument(depth, "--depth")));
    }
    if (args.has("--from")) request.first = rangeArgument(*args.value("--from"), "--from");
    if (args.has("--to")) request.last = rangeArgument(*args.value("--to"), "--to");
    request.colours = coloursForDepth(4, context.home + "/16.dat");
    const std::string& file = args.positional()[0];
    const image::PhoneDocument document = openPhoneFile(file);
    const image::ImageState& state = document.state();
    ScanResult result = scanPictures(state.FirmwareImage, request);
    if (result.failure)
        throw std::runtime_error(file + ": " + failureText(*result.failure, state.FirmwareImage.size()));
    const bool withKnown = args.has("--table");
    if (withKnown) markKnownCandidates(result.candidates, openPictureTable(*args.value("--table"), false));
    if (args.has("--json")) printJson(result.candidates, withKnown);
    else printLines(result.candidates, withKnown);
    if (result.candidates.empty()) std::cerr << file << ": no pictures found\n";
    return 0;
}

}  // namespace

std::vector<Command> scanCommands()
{
    return {
        {"find-pictures", "FILE [--depth D]... [--from HEX] [--to HEX] [--json] [--table TABLE]",
         "every picture of depth 4, 8, 12, 16 or 24 in one pass, in address order: ADDRESS DEPTH WIDTH HEIGHT SCORE",
         "  --depth D       only pictures of depth D (4, 8, 12, 16 or 24); may be given again\n"
         "  --from HEX      the first address scanned\n"
         "  --to HEX        the last address scanned (inclusive)\n"
         "  --json          one JSON array of objects (address, depth, width, height, score)\n"
         "  --table TABLE   marks candidates that share a byte with a row of the picture table\n",
         runFindPictures},
    };
}

}  // namespace zevran::cli
