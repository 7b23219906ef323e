#include "phone_argument.hpp"

#include "command.hpp"
#include "output_file.hpp"

#include "settings/profile_file.hpp"
#include "image/phone_file.hpp"
#include "strings/code_page.hpp"

#include <stdexcept>

namespace zevran::cli {

image::ImageState openPhoneFile(const std::string& path)
{
    image::ImageState state;
    try {
        image::loadPhoneFile(state, path);
    } catch (const image::EmptyPhoneFile&) {
        throw std::runtime_error(path + ": the file is empty (0 bytes)");
    }
    return state;
}

void requireOutputForKind(const Arguments& args, const image::ImageState& state, const std::string& phonePath)
{
    if (args.has("-o") && state.FileKind != "bin")
        throw std::runtime_error(phonePath + ": only a \"bin\" phone file takes an S-record patch; this one is \"" +
                                 state.FileKind + "\"");
    if (args.has("--in-place") && state.FileKind != "asf")
        throw std::runtime_error(phonePath + ": only an \"asf\" phone file is patched in place; this one is \"" +
                                 state.FileKind + "\"");
}

std::string codePageOf(const Context& context)
{
    app::ProfileFile settings(context.settingsFile);
    auto named = settings.read("Options", "Code Page");
    return named && !named->empty() ? *named : std::string(strings::kDefaultCodePage);
}

void writeEdits(const Arguments& args, image::ImageState& state, const std::vector<image::Region>& regions)
{
    if (args.has("-o")) {
        // No regions write no patch, as before.
        if (!regions.empty())
            writeOutputFile(*args.value("-o"), [&](const std::string& path) { image::writeSRecordPatch(path, regions); });
    } else {
        image::patchImage(state, regions);
        image::Saveaxf(state);
    }
}

}  // namespace zevran::cli
