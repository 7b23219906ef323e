// Where zevran-cli points every file it writes: a temporary file in the output's
// folder, renamed over the output only once the whole file is written, so a failed
// run leaves an existing output as it was and no partial file behind.
#pragma once

#include "cli_args.hpp"

#include <functional>
#include <string>

namespace zevran::cli {

// Runs `write` with the path it is to write (a temporary beside `output`), then renames
// that file over `output`. A failure of `write` or of the rename removes the temporary
// and is thrown again with "nothing was written to OUTPUT" added; a usage error passes
// as it is. A device or pipe named as the output (/dev/null, a fifo) cannot be renamed
// over and is written where it is.
void writeOutputFile(const std::string& output, const std::function<void(const std::string& path)>& write);

}  // namespace zevran::cli
