// Where zevran-cli points every file it writes: a temporary file in the output's
// folder, renamed over the output only once the whole file is written, so a failed
// run leaves an existing output as it was and no partial file behind.
#pragma once

#include "cli_args.hpp"

#include <functional>
#include <string>

namespace zevran::cli {

// image::writeThroughTemporary, except that a usage error passes as it is.
void writeOutputFile(const std::string& output, const std::function<void(const std::string& path)>& write);

}  // namespace zevran::cli
