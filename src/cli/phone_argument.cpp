#include "phone_argument.hpp"

#include "command.hpp"
#include "image/output_file.hpp"

#include "settings/profile_file.hpp"
#include "image/phone_file.hpp"
#include "strings/code_page.hpp"

#include <stdexcept>

namespace zevran::cli {

image::PhoneDocument openPhoneFile(const std::string& path)
{
    image::PhoneDocument document;
    try {
        document.open(path);
    } catch (const image::EmptyPhoneFile&) {
        throw std::runtime_error(path + ": the file is empty (0 bytes)");
    }
    return document;
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

void writeEdits(const Arguments& args, image::PhoneDocument& document, const std::vector<image::Region>& regions)
{
    if (args.has("-o")) {
        image::writeEditsAsPatch(document, *args.value("-o"), regions);
    } else {
        document.patch(regions);
        document.save();
    }
}

}  // namespace zevran::cli
