#include "output_file.hpp"

#include "image/temporary_output.hpp"

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
std::string namingTheOutput(std::string message, const std::string& temporary, const std::string& output)
{
    for (auto at = message.find(temporary); at != std::string::npos; at = message.find(temporary, at + output.size()))
        message.replace(at, temporary.size(), output);
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
    std::string temporaryPath;
    try {
        image::TemporaryOutput temporary(linkTarget(output), image::kSavingMarker);
        temporaryPath = temporary.path();
        write(temporaryPath);
        temporary.commit();
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        const std::string message = temporaryPath.empty() ? error.what() : namingTheOutput(error.what(), temporaryPath, output);
        throw std::runtime_error(message + "; nothing was written to " + output);
    }
}

}  // namespace zevran::cli
