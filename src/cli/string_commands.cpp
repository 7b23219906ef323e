// find-text and patch-strings: the string search and the string edit list from the
// command line.
#include "cli_args.hpp"
#include "command.hpp"
#include "phone_argument.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/patch_writer.hpp"
#include "image/phone_file.hpp"
#include "image/table_text.hpp"
#include "strings/string_edit.hpp"
#include "strings/string_search.hpp"

#include <iostream>

namespace zevran::cli {

namespace {

using namespace zevran::image;
using namespace zevran::strings;

int runFindText(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {}, {"--handset-codes", "--all"});
    args.expectPositional(2, "find-text FILE TEXT [--handset-codes] [--all]");
    if (args.positional()[1].empty()) throw UsageError("find-text needs a TEXT to look for");
    image::PhoneDocument document = openPhoneFile(args.positional()[0]);
    image::ImageState& state = document.state();
    const bool handsetCodes = args.has("--handset-codes");
    const std::string pattern = searchPattern(args.positional()[1], handsetCodes, codePageOf(context));
    int passCount = 0;
    std::string out;
    while (auto hit = findNextString(state, pattern, handsetCodes, passCount)) {
        out += hit->foundStart + " " + hit->foundEnd + " " + hit->foundLength + "\n";
        if (!args.has("--all")) break;
    }
    if (out.empty()) throw std::runtime_error("\"" + args.positional()[1] + "\" is not in " + args.positional()[0]);
    std::cout << out;
    return 0;
}

// One plan line: START END TEXT, the text running to the line's end.
StringEditRow planRow(std::string_view line, std::size_t lineNumber, std::size_t rowsBefore, bool handsetCodes,
                      const std::string& codePage)
{
    const auto where = "line " + std::to_string(lineNumber) + ": ";
    const auto firstSpace = line.find(' ');
    const auto secondSpace = firstSpace == std::string_view::npos ? firstSpace : line.find(' ', firstSpace + 1);
    if (secondSpace == std::string_view::npos) throw std::runtime_error(where + "expected START END TEXT");
    const std::string start(line.substr(0, firstSpace));
    const std::string end(line.substr(firstSpace + 1, secondSpace - firstSpace - 1));
    const std::string text(line.substr(secondSpace + 1));
    for (const std::string& field : {start, end})
        for (char c : field)
            if (hexDigitOrMinusOne(c) < 0) throw std::runtime_error(where + "\"" + field + "\" is not a hex address");
    const std::int64_t first = HexToLong(start);
    const std::int64_t last = HexToLong(end);
    if (last < first) throw std::runtime_error(where + "the end " + end + " lies before the start " + start);
    const std::int64_t bytes = last - first + 1;
    // The length as the search shows it: bytes, or characters in handset codes.
    const std::string length =
        handsetCodes ? std::to_string(bytes / 2) + (bytes % 2 ? ".5" : "") : std::to_string(bytes);
    // Padded in bytes as the edit list pads it, so a GBK text shorter than its range fills it too.
    std::optional<StringEditRow> row;
    try {
        row = makeFittedEditRow(rowsBefore, HexPad(static_cast<std::uint32_t>(first), 8),
                                HexPad(static_cast<std::uint32_t>(last), 8), text, length, handsetCodes, codePage);
    } catch (const EditRowError& error) {
        throw std::runtime_error(where + error.what());
    }
    if (!row) throw std::runtime_error(where + "the replacement text is empty");
    return *row;
}

int runPatchStrings(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"-o"}, {"--in-place", "--handset-codes"});
    args.expectPositional(2, "patch-strings FILE PLAN (-o OUT.s3 | --in-place) [--handset-codes]");
    if (args.has("-o") == args.has("--in-place"))
        throw UsageError("patch-strings needs either -o OUT.s3 or --in-place");
    const std::string& phonePath = args.positional()[0];
    const std::string& planPath = args.positional()[1];
    image::PhoneDocument document = openPhoneFile(phonePath);
    image::ImageState& state = document.state();
    requireOutputForKind(args, state, phonePath);
    const bool handsetCodes = args.has("--handset-codes");
    const std::string codePage = codePageOf(context);
    const auto planBytes = readWholeFile(planPath);
    const std::string planText(planBytes.begin(), planBytes.end());
    std::vector<Region> regions;
    std::size_t lineNumber = 0;
    for (std::string_view line : splitTextLines(planText)) {
        ++lineNumber;
        if (line.empty()) continue;
        try {
            StringEditRow row = planRow(line, lineNumber, regions.size(), handsetCodes, codePage);
            regions.push_back(editRowRegion(row, handsetCodes, codePage));
            if (regions.back().last >= state.FirmwareLength)
                throw std::runtime_error("line " + std::to_string(lineNumber) + ": the end " + row.end +
                                         " lies past the image (" + std::to_string(state.FirmwareLength) + " bytes)");
        } catch (const std::exception& error) {
            throw std::runtime_error(planPath + ": " + error.what());
        }
    }
    if (regions.empty()) throw std::runtime_error(planPath + ": the plan holds no replacement");
    writeEdits(args, document, regions);
    return 0;
}

}  // namespace

std::vector<Command> stringCommands()
{
    return {
        {"find-text", "FILE TEXT [--handset-codes] [--all]",
         "start, end and length of the first stored string holding TEXT (every one with --all)",
         "  --handset-codes search in the handset's two-byte codes instead of the code page\n"
         "  --all           every stored string holding TEXT, not only the first\n",
         runFindText},
        {"patch-strings", "FILE PLAN (-o OUT.s3 | --in-place) [--handset-codes]",
         "applies a plan of \"START END TEXT\" lines: an S-record patch for a bin file, in place for an asf file",
         "  -o OUT.s3       the S-record patch (a bin file)\n"
         "  --in-place      change an asf file itself\n"
         "  --handset-codes write the texts in the handset's two-byte codes\n",
         runPatchStrings},
    };
}

}  // namespace zevran::cli
