// tones and export-tones: the ring-tone scan and export from the command line.
#include "cli_args.hpp"
#include "command.hpp"
#include "phone_argument.hpp"

#include "image/file_io.hpp"
#include "image/phone_file.hpp"
#include "tones/tone_check.hpp"
#include "tones/tone_export.hpp"
#include "tones/tone_scan.hpp"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>

namespace zevran::cli {

namespace {

using namespace zevran::image;
using namespace zevran::tones;

// The rows alone need no image in memory: the file is scanned as it is read.
std::vector<ToneSlot> streamedTones(const std::string& path)
{
    std::ifstream in = openInputFile(path);
    const ToneStreamScan scan = scanToneStream(in);
    if (scan.imageBytes == 0) throw std::runtime_error(path + ": the file is empty (0 bytes)");
    checkImageSize(path, static_cast<std::uintmax_t>(scan.imageBytes));
    return scan.rows;
}

std::string toneDetails(const ImageState& state, const ToneSlot& row)
{
    ToneCheck check;
    try {
        check = checkTone(toneBytes(state, row));
    } catch (const ToneExportError&) {
        // The scan takes a declared size at its word: a tone running past the
        // image's end is cut short (bad), and the rows after it still list.
        check.crc = CrcState::Bad;
    }
    std::string title = check.title;
    // One tone, one line: a control byte in a damaged title must not break it.
    std::replace_if(
        title.begin(), title.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
    return " crc=" + std::string(crcStateName(check.crc)) + " title=" + title;
}

int runTones(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {}, {"--details"});
    args.expectPositional(1, "tones FILE [--details]");
    const std::string& path = args.positional()[0];
    const bool details = args.has("--details");
    image::PhoneDocument document;
    if (details) document = openPhoneFile(path);
    image::ImageState& state = document.state();
    std::string out;
    for (const ToneSlot& row : details ? scanTones(state) : streamedTones(path)) {
        out += row.number + " " + row.start + " " + row.end + " " + row.size;
        if (details) out += toneDetails(state, row);
        out += "\n";
    }
    std::cout << out;
    return 0;
}

int runExportTones(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--to", "--rows"}, {});
    args.expectPositional(1, "export-tones FILE --to PATH [--rows 001,004,...]");
    if (!args.has("--to")) throw UsageError("export-tones needs --to PATH");
    image::PhoneDocument document = openPhoneFile(args.positional()[0]);
    const std::vector<ToneSlot> rows = scanTones(document.state());
    std::set<long> wanted;
    if (auto list = args.value("--rows")) {
        wanted = numberListArgument(*list, "--rows");
        for (long number : wanted) {
            if (number < 1 || static_cast<std::size_t>(number) > rows.size())
                throw std::runtime_error("row " + std::to_string(number) + " is not among the " +
                                         std::to_string(rows.size()) + " tones found");
        }
    }
    const std::string picked = *args.value("--to");
    auto isWanted = [&](std::size_t i) { return wanted.empty() || wanted.count(static_cast<long>(i) + 1) > 0; };
    std::size_t passed = 0;
    try {
        exportTones(document, rows, isWanted, picked, [&](std::size_t i) { passed = i + 1; });
    } catch (const std::exception& error) {
        // The export stopped at the first wanted row after the ones it passed.
        std::size_t failed = passed;
        while (failed < rows.size() && !isWanted(failed)) ++failed;
        if (failed == rows.size()) throw;
        throw std::runtime_error(std::string(error.what()) + "; nothing was written to " +
                                 toneExportPath(picked, rows[failed].number));
    }
    return 0;
}

}  // namespace

std::vector<Command> toneCommands()
{
    return {
        {"tones", "FILE [--details]",
         "every SMAF ring tone in the phone file: number, start, end, size (and its CRC and title)",
         "  --details       adds each tone's CRC state and title\n", runTones},
        {"export-tones", "FILE --to PATH [--rows 001,004,...]",
         "writes tones as PATH less its last four characters + \"-NNN.mmf\" (all rows without --rows)",
         "  --to PATH       the picked file name: PATH less its last four characters + -NNN.mmf\n"
         "  --rows LIST     the rows to export, such as 001,004 (all without it)\n",
         runExportTones},
    };
}

}  // namespace zevran::cli
