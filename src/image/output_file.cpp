#include "output_file.hpp"

#include "temporary_output.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>

namespace zevran::image {

namespace {

// An existing output that is not a regular file (nor a link to one) takes the bytes where it is.
bool isDeviceOrPipe(const std::string& output)
{
    struct stat status {};
    return ::stat(output.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

std::string linkTarget(const std::string& output)
{
    std::unique_ptr<char, decltype(&std::free)> real(::realpath(output.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : output;
}

// A writer's failure names the file it wrote, the temporary: the user knows the output.
// The temporary is the target, the marker and six characters mkstemp chose (which it
// writes into the name even when it fails).
std::string namingTheOutput(std::string text, const std::string& target, const std::string& output)
{
    const std::string prefix = target + std::string(kSavingMarker);
    for (auto at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at + output.size()))
        text.replace(at, std::min(prefix.size() + 6, text.size() - at), output);
    return text;
}

Failure namingTheOutput(const Failure& failure, const std::string& target, const std::string& output)
{
    Failure named{failure.reason, {}, nullptr};
    for (const std::string& value : failure.values) named.values.push_back(namingTheOutput(value, target, output));
    if (failure.cause) named.cause = std::make_shared<const Failure>(namingTheOutput(*failure.cause, target, output));
    return named;
}

}  // namespace

void writeThroughTemporary(const std::string& output, const std::function<void(const std::string& path)>& write)
{
    if (isDeviceOrPipe(output)) {
        write(output);
        return;
    }
    const std::string target = linkTarget(output);
    try {
        TemporaryOutput temporary(target, kSavingMarker);
        write(temporary.path());
        temporary.commit();
    } catch (const std::exception& error) {
        throw OutputNotWritten(Reason::NothingWrittenTo, {output}, namingTheOutput(failureOf(error), target, output));
    }
}

void writeEditsAsPatch(const PhoneDocument& document, const std::string& output, const std::vector<Region>& regions)
{
    document.refuseAsOutput(output);
    if (regions.empty()) return;
    writeThroughTemporary(output, [&](const std::string& path) { writeSRecordPatch(path, regions); });
}

}  // namespace zevran::image
