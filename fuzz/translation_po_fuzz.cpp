// The input as a PO translation file: libgettextpo reads files by name, so the input
// is written to one temporary file first. Read, or refused with a TranslationFileError;
// the entries read are imported into a fixed image (see translation_check.hpp).
#include "translation_check.hpp"

#include <cstdio>
#include <string>
#include <vector>
#include <unistd.h>

namespace {

const std::string& inputPath()
{
    static const std::string path = [] {
        char pattern[] = "/tmp/translation-po-fuzz-XXXXXX";
        const int fd = ::mkstemp(pattern);
        if (fd < 0) zevran::fuzz::failTranslation("translation_po_fuzz", "no temporary file");
        ::close(fd);
        return std::string(pattern);
    }();
    return path;
}

}  // namespace

// libgettextpo keeps allocations past po_file_free (translation_po.cpp has LeakSanitizer
// pass over them), so libFuzzer would scan for leaks after every input, at some 4 ms each. Leak checks stay off here
// unless the command line asks for them after this default; the CSV and XLIFF targets check the import.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static std::vector<char*> arguments(*argv, *argv + *argc);
    static char noLeakChecks[] = "-detect_leaks=0";
    arguments.insert(arguments.begin() + 1, noLeakChecks);
    arguments.push_back(nullptr);
    *argc = static_cast<int>(arguments.size() - 1);
    *argv = arguments.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::FILE* file = std::fopen(inputPath().c_str(), "wb");
    if (!file) zevran::fuzz::failTranslation("translation_po_fuzz", "cannot write the input");
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    std::vector<zevran::strings::TranslationEntry> entries;
    try {
        entries = zevran::strings::readPoFile(inputPath());
    } catch (const zevran::strings::TranslationFileError&) {
        return 0;
    }
    zevran::fuzz::checkImport("translation_po_fuzz", entries);
    return 0;
}
