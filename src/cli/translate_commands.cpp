// export-strings and import-strings: every stored string out to a translation file,
// and the translations back in as one patch, every budget checked.
#include "cli_args.hpp"
#include "command.hpp"
#include "phone_argument.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/temporary_output.hpp"
#include "strings/string_extract.hpp"
#include "strings/translation_files.hpp"
#include "strings/translation_import.hpp"

#include <iostream>

namespace zevran::cli {

namespace {

using namespace zevran::image;
using namespace zevran::strings;

CodesWanted codesArgument(const Arguments& args)
{
    const std::string codes = args.value("--codes").value_or("both");
    if (codes == "single") return CodesWanted::Single;
    if (codes == "handset") return CodesWanted::Handset;
    if (codes == "both") return CodesWanted::Both;
    throw UsageError("--codes takes single, handset or both, not \"" + codes + "\"");
}

int runExportStrings(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"-o", "--codes", "--min-bytes"}, {});
    const std::string usage =
        "export-strings FILE -o OUT.po|OUT.xlf|OUT.csv [--codes single|handset|both] [--min-bytes N]";
    args.expectPositional(1, usage);
    if (!args.has("-o")) throw UsageError("export-strings needs -o OUT (" + usage + ")");
    const std::string& phonePath = args.positional()[0];
    const std::string outPath = *args.value("-o");
    if (!formatOfPath(outPath)) throw UsageError(outPath + ": the name must end in .po, .xlf, .xliff or .csv");
    ExtractOptions options;
    options.codePage = codePageOf(context);
    options.codes = codesArgument(args);
    if (const auto minBytes = args.value("--min-bytes")) {
        const long value = numberArgument(*minBytes, "--min-bytes");
        if (value < 1) throw UsageError("--min-bytes must be 1 or more");
        options.minBytes = static_cast<std::uint32_t>(value);
    }
    const image::PhoneDocument document = openPhoneFile(phonePath);
    const image::ImageState& state = document.state();
    document.refuseAsOutput(outPath);
    const ExtractResult result = extractStrings(state.FirmwareImage, options);
    writeTranslationFile(outPath, result.strings, FileNameOf(phonePath));
    std::size_t handset = 0;
    for (const StoredString& s : result.strings) handset += s.codes == StringCodes::Handset;
    std::cout << outPath << ": " << result.strings.size() << " strings (" << result.strings.size() - handset
              << " single, " << handset << " handset)\n";
    return 0;
}

// One line for an entry that is not written: its key, its source and what kept it out.
std::string outcomeLine(const EntryResult& r)
{
    return entryKey(r.entry.address, r.entry.codes) + " \"" + r.entry.source + "\": " + outcomeText(r);
}

void writeReport(const std::string& path, const ImportResult& result)
{
    TemporaryOutput report(path, kSavingMarker);
    report.stream() << reportCsv(result);
    report.commit();
}

std::vector<TranslationEntry> readTranslations(const std::string& path)
{
    try {
        return readTranslationFile(path);
    } catch (const TranslationFileError& error) {
        throw std::runtime_error(describeFailure(error.failure()));
    }
}

int runImportStrings(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"-o", "--report"}, {"--in-place", "--partial"});
    args.expectPositional(2, "import-strings FILE TRANSLATION (-o OUT.s3 | --in-place) [--partial] [--report R.csv]");
    if (args.has("-o") == args.has("--in-place"))
        throw UsageError("import-strings needs either -o OUT.s3 or --in-place");
    const std::string& phonePath = args.positional()[0];
    const std::string& translationPath = args.positional()[1];
    if (!formatOfPath(translationPath))
        throw UsageError(translationPath + ": the name must end in .po, .xlf, .xliff or .csv");
    image::PhoneDocument document = openPhoneFile(phonePath);
    image::ImageState& state = document.state();
    requireOutputForKind(args, state, phonePath);
    for (const char* output : {"-o", "--report"})
        if (args.has(output)) document.refuseAsOutput(*args.value(output));
    const std::vector<TranslationEntry> entries = readTranslations(translationPath);
    const ImportResult result = importTranslations(state.FirmwareImage, entries, codePageOf(context));
    if (args.has("--report")) writeReport(*args.value("--report"), result);
    for (const EntryResult& r : result.results)
        if (r.outcome != ImportOutcome::Fits) std::cerr << outcomeLine(r) << "\n";
    const std::size_t refused = result.results.size() - result.fitting;
    if (refused > 0 && !args.has("--partial")) {
        std::cerr << "zevran-cli: nothing written: " << refused << " of " << result.results.size()
                  << " translated entries do not fit (--partial writes the ones that do)\n";
        return 1;
    }
    const std::vector<Region> regions = fittingRegions(result);
    if (!regions.empty()) writeEdits(args, document, regions);
    std::cout << result.fitting << " written, " << refused << " not written, " << result.untranslated
              << " untranslated\n";
    return 0;
}

}  // namespace

std::vector<Command> translateCommands()
{
    return {
        {"export-strings", "FILE -o OUT.po|OUT.xlf|OUT.csv [--codes single|handset|both] [--min-bytes N]",
         "every stored string with its address and byte budget, as a PO, XLIFF or CSV file for translators",
         "  -o OUT          the translation file; its suffix (.po, .xlf, .csv) chooses the format\n"
         "  --codes WHICH   single, handset or both (the default): the encodings listed\n"
         "  --min-bytes N   the shortest string listed, in bytes (4 without it)\n",
         runExportStrings},
        {"import-strings", "FILE TRANSLATION (-o OUT.s3 | --in-place) [--partial] [--report R.csv]",
         "the translations of a PO, XLIFF or CSV file as one patch; nothing is written unless every one fits "
         "(--partial writes the fitting ones)",
         "  -o OUT.s3       the S-record patch of a \"bin\" file\n"
         "  --in-place      changes an \"asf\" file, through a temporary file and a rename\n"
         "  --partial       writes the translations that fit and reports the others\n"
         "  --report R.csv  every translated entry's outcome as CSV\n",
         runImportStrings},
    };
}

}  // namespace zevran::cli
