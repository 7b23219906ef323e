// The input as an XLIFF translation file: read through pugixml, or refused with a
// TranslationFileError; the entries read are imported into a fixed image (see
// translation_check.hpp).
#include "translation_check.hpp"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<zevran::strings::TranslationEntry> entries;
    try {
        entries = zevran::strings::readXliff(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.xlf");
    } catch (const zevran::strings::TranslationFileError&) {
        return 0;
    }
    zevran::fuzz::checkImport("translation_xliff_fuzz", entries);
    return 0;
}
