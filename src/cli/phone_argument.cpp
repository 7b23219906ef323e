#include "phone_argument.hpp"

#include "output_file.hpp"

#include "image/phone_file.hpp"

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
