// info, s3-to-bin, bin-to-s3, fill-s3 and apply-patch: the phone file and the
// S-record converter from the command line.
#include "cli_args.hpp"
#include "command.hpp"
#include "output_file.hpp"
#include "phone_argument.hpp"

#include "image/converter.hpp"
#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/mapped_file.hpp"
#include "image/patch_writer.hpp"
#include "image/phone_file.hpp"
#include "image/srecord_reader.hpp"

#include <fstream>
#include <iostream>
#include <optional>

namespace zevran::cli {

namespace {

using namespace zevran::image;

// Hex as typed on the command line: an optional 0x, then hex digits only.
std::string hexArgument(const std::string& text, const std::string& what)
{
    std::string digits = text.starts_with("0x") || text.starts_with("0X") ? text.substr(2) : text;
    if (digits.empty()) throw UsageError(what + " is empty");
    for (char c : digits)
        if (hexDigitOrMinusOne(c) < 0) throw UsageError(what + " \"" + text + "\" is not hex");
    return digits;
}

std::uint8_t fillArgument(const std::optional<std::string>& text)
{
    if (!text) return 0xFF;
    std::string digits = hexArgument(*text, "--fill");
    if (digits.size() > 2) throw UsageError("--fill \"" + *text + "\" is not one byte (00 to FF)");
    return fillByteFromText(digits);
}

std::uint32_t addressArgument(const std::string& text, const std::string& what)
{
    try {
        return static_cast<std::uint32_t>(HexToLong(hexArgument(text, what)));
    } catch (const HexOverflow&) {
        throw std::runtime_error(what + " " + text + " is above the highest address 7FFFFFFF");
    }
}

int runInfo(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {}, {});
    args.expectPositional(1, "info FILE");
    const std::string& path = args.positional()[0];
    image::PhoneDocument document = openPhoneFile(path);
    image::ImageState& state = document.state();
    std::optional<std::string> version;
    try {
        version = findVersionText(state);
    } catch (const VersionOutOfImage& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
    std::cout << "kind: " << state.FileKind << "\nlength: " << state.FirmwareLength
              << "\nversion: " << (version ? *version : std::string("(none)")) << "\n";
    return 0;
}

int runS3ToBin(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--fill", "-o"}, {"--data-only", "--any-records"});
    args.expectPositional(1, "s3-to-bin IN [--fill HH | --data-only] [--any-records] [-o OUT]");
    if (args.has("--fill") && args.has("--data-only")) throw UsageError("--fill and --data-only exclude each other");
    S3ToBinOptions options;
    options.mode = args.has("--data-only") ? S3ToBinMode::DataOnly : S3ToBinMode::FullAddress;
    options.fill = fillArgument(args.value("--fill"));
    options.anyRecords = args.has("--any-records");
    const std::string& input = args.positional()[0];
    const std::string output = args.value("-o").value_or(convertedOutputPath(input, ".bin"));
    // A regular file is read in place through a mapping; a pipe as a stream.
    std::optional<MappedFile> mapped;
    std::ifstream in;
    if (isRegularFile(input)) mapped.emplace(input);
    else in = openInputFile(input);
    refuseSameFile(input, output);
    std::uint64_t skipped = 0;
    writeOutputFile(output, [&](const std::string& path) {
        std::ofstream out = openOutputFile(path);
        std::optional<SRecordToBinary> converter;
        if (mapped) converter.emplace(*mapped, out, options);
        else converter.emplace(in, out, options);
        try {
            withOutputName(path, [&] { converter->convertAll(); });
        } catch (const SRecordError& error) {
            throw std::runtime_error(input + ": " + error.what());
        }
        closeOutputFile(out, path);
        skipped = converter->skippedLines();
    });
    if (skipped)
        std::cerr << "zevran-cli: " << input << ": skipped " << skipped
                  << (skipped == 1 ? " line that does" : " lines that do") << " not start with \"S\"\n";
    return 0;
}

int runBinToS3(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--start", "--end", "--fill", "-o"}, {});
    args.expectPositional(1, "bin-to-s3 IN [--start HEX --end HEX] [--fill HH] [-o OUT]");
    if (args.has("--start") != args.has("--end")) throw UsageError("--start and --end go together");
    const std::uint8_t fill = fillArgument(args.value("--fill"));
    const std::string& input = args.positional()[0];
    const std::string output = args.value("-o").value_or(convertedOutputPath(input, ".s3"));
    std::ifstream in = openInputFile(input);
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    if (args.has("--start")) {
        start = addressArgument(*args.value("--start"), "--start");
        end = addressArgument(*args.value("--end"), "--end");
        if (end <= start) throw std::runtime_error("the end address must lie above the start address");
    } else {
        end = wholeFileLastAddress(input);
    }
    refuseSameFile(input, output);
    writeOutputFile(output, [&](const std::string& path) {
        std::ofstream out = openOutputFile(path);
        withOutputName(path, [&] { binaryToSRecord(&in, out, start, end, fill); });
        closeOutputFile(out, path);
    });
    return 0;
}

int runFillS3(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--start", "--end", "--fill", "-o"}, {});
    args.expectPositional(0, "fill-s3 --start HEX --end HEX --fill HH -o OUT");
    for (const char* needed : {"--start", "--end", "--fill", "-o"})
        if (!args.has(needed)) throw UsageError(std::string("fill-s3 needs ") + needed);
    const std::uint32_t start = addressArgument(*args.value("--start"), "--start");
    const std::uint32_t end = addressArgument(*args.value("--end"), "--end");
    if (end <= start) throw std::runtime_error("the end address must lie above the start address");
    const std::uint8_t fill = fillArgument(args.value("--fill"));
    const std::string output = *args.value("-o");
    writeOutputFile(output, [&](const std::string& path) {
        std::ofstream out = openOutputFile(path);
        withOutputName(path, [&] { binaryToSRecord(nullptr, out, start, end, fill); });
        closeOutputFile(out, path);
    });
    return 0;
}

int runApplyPatch(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"-o"}, {});
    args.expectPositional(2, "apply-patch IMAGE PATCH -o OUT");
    if (!args.has("-o")) throw UsageError("apply-patch needs -o OUT");
    const std::string& imagePath = args.positional()[0];
    const std::string& patchPath = args.positional()[1];
    const std::string output = *args.value("-o");
    refuseSameFile(imagePath, output);
    std::vector<std::uint8_t> image = readWholeFile(imagePath);
    const std::size_t imageLength = image.size();
    std::ifstream patch = openInputFile(patchPath);
    try {
        // A patch that diff wrote for a longer image brings that image's tail.
        applySRecordPatch(image, patch, PatchGrowth::GrowWithFF);
    } catch (const SRecordError& error) {
        throw std::runtime_error(patchPath + ": " + error.what() + "; nothing was written to " + output);
    }
    writeOutputFile(output, [&](const std::string& path) { saveFileSafely(path, image); });
    if (image.size() > imageLength)
        std::cerr << "zevran-cli: " << patchPath << " reaches past the end of " << imagePath << ": " << output
                  << " grew from " << imageLength << " to " << image.size() << " bytes\n";
    return 0;
}

}  // namespace

std::vector<Command> imageCommands()
{
    return {
        {"info", "FILE", "the phone file's kind, length and version text", "", runInfo},
        {"s3-to-bin", "IN [--fill HH | --data-only] [--any-records] [-o OUT]",
         "S-record to binary: the address space from 0 with gaps filled (fill FF), or the data only",
         "  --fill HH       the byte that fills the gaps between records (default FF)\n"
         "  --data-only     the records' data one after another, addresses ignored\n"
         "  --any-records   read S1, S2 and S3 records strictly, checksums included\n"
         "  -o OUT          the binary file (default: IN named with .bin)\n",
         runS3ToBin},
        {"bin-to-s3", "IN [--start HEX --end HEX] [--fill HH] [-o OUT]",
         "binary to S-record: the whole file from address 0, or placed at a range (cut or filled)",
         "  --start HEX     the address of the first byte, with --end\n"
         "  --end HEX       the last address (inclusive): the file is cut or filled to the range\n"
         "  --fill HH       the byte that fills a range longer than the file (default FF)\n"
         "  -o OUT          the S-record file (default: IN named with .s3)\n",
         runBinToS3},
        {"fill-s3", "--start HEX --end HEX --fill HH -o OUT", "an S-record file of fill bytes only",
         "  --start HEX     the first address\n"
         "  --end HEX       the last address (inclusive)\n"
         "  --fill HH       the fill byte\n"
         "  -o OUT          the S-record file\n",
         runFillS3},
        {"apply-patch", "IMAGE PATCH -o OUT", "a copy of IMAGE with the S-record PATCH laid over it",
         "  -o OUT          the patched copy; records past IMAGE's end grow it (a gap reads FF)\n", runApplyPatch},
    };
}

}  // namespace zevran::cli
