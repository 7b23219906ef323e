#include "output_file.hpp"

#include "image/output_file.hpp"

#include <exception>

namespace zevran::cli {

void writeOutputFile(const std::string& output, const std::function<void(const std::string& path)>& write)
{
    // A usage error found while writing is the command's, not the file's: it passes as it is.
    std::exception_ptr usage;
    try {
        image::writeThroughTemporary(output, [&](const std::string& path) {
            try {
                write(path);
            } catch (const UsageError&) {
                usage = std::current_exception();
                throw;
            }
        });
    } catch (const image::OutputNotWritten&) {
        if (usage) std::rethrow_exception(usage);
        throw;
    }
}

}  // namespace zevran::cli
