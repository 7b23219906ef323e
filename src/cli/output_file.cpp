#include "output_file.hpp"

#include "image/temporary_output.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>

namespace zevran::cli {

namespace {

// An existing output that is not a regular file (nor a link to one) takes the bytes where it is.
bool isDeviceOrPipe(const std::string& output)
{
    struct stat status {};
    return ::stat(output.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

// A writer's message names the file it wrote, the temporary: the user knows the output.
// The temporary is the target, the marker and six characters mkstemp chose (which it
// writes into the name even when it fails).
std::string namingTheOutput(std::string message, const std::string& target, const std::string& output)
{
    const std::string prefix = target + std::string(image::kSavingMarker);
    for (auto at = message.find(prefix); at != std::string::npos; at = message.find(prefix, at + output.size()))
        message.replace(at, std::min(prefix.size() + 6, message.size() - at), output);
    return message;
}

// Through a link the file it names is replaced, and the link stays.
std::string linkTarget(const std::string& output)
{
    std::unique_ptr<char, decltype(&std::free)> real(::realpath(output.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : output;
}

}  // namespace

void writeOutputFile(const std::string& output, const std::function<void(const std::string& path)>& write)
{
    if (isDeviceOrPipe(output)) {
        write(output);
        return;
    }
    const std::string target = linkTarget(output);
    try {
        image::TemporaryOutput temporary(target, image::kSavingMarker);
        write(temporary.path());
        temporary.commit();
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        const std::string message = namingTheOutput(error.what(), target, output);
        throw std::runtime_error(message + "; nothing was written to " + output);
    }
}

}  // namespace zevran::cli
