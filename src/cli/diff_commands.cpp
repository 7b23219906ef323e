// diff: where two phone files differ, and the patch that turns the first into the second.
#include "cli_args.hpp"
#include "command.hpp"
#include "output_file.hpp"

#include "image/file_io.hpp"
#include "image/image_diff.hpp"
#include "image/phone_file.hpp"

#include <iostream>
#include <string>

namespace zevran::cli {

namespace {

using namespace zevran::image;

constexpr const char* kUsage = "diff OLD NEW [--gap N] [-o PATCH.s3]";

int runDiff(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--gap", "-o"}, {});
    args.expectPositional(2, kUsage);
    const std::size_t gap =
        args.has("--gap") ? static_cast<std::size_t>(numberArgument(*args.value("--gap"), "--gap")) : 0;
    const std::string& olderPath = args.positional()[0];
    const std::string& newerPath = args.positional()[1];
    const auto output = args.value("-o");
    if (output) {
        refuseSameFile(olderPath, *output);
        refuseSameFile(newerPath, *output);
    }
    std::vector<DiffRange> ranges;
    try {
        ranges = compareImageFiles(olderPath, newerPath, gap);
    } catch (const ShorterImage& error) {
        throw std::runtime_error(newerPath + ": holds " + std::to_string(error.newerLength()) +
                                 " bytes, fewer than the " + std::to_string(error.olderLength()) + " of " + olderPath +
                                 "; a patch cannot shorten an image");
    }
    std::string lines;
    for (const DiffRange& range : ranges) lines += describeRange(range) + "\n";
    std::cout << lines << std::flush;
    if (output) {
        if (!ranges.empty()) {
            writeOutputFile(*output, [&](const std::string& path) { writeDiffPatchFromFile(path, newerPath, ranges); });
            return 0;
        }
        std::cerr << "zevran-cli: " << olderPath << " and " << newerPath << " are equal; no patch written to "
                  << *output << "\n";
    }
    return 0;
}

}  // namespace

std::vector<Command> diffCommands()
{
    return {
        {"diff", kUsage + 5,
         "the regions where NEW differs from OLD (first, last, size); -o writes the patch that turns OLD into NEW",
         "  --gap N         join regions with at most N equal bytes between them\n"
         "  -o PATCH.s3     the patch that turns OLD into NEW\n",
         runDiff},
    };
}

}  // namespace zevran::cli
