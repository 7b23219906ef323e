// The one way every output file of the workshop is written: under a temporary name in
// the output's folder, renamed over the output only once the whole file is written, so
// a failure leaves an existing output as it was and no partial file behind. The edits
// of a "bin" image leave through it as an S-record patch, never over the phone file.
#pragma once

#include "failure.hpp"
#include "patch_writer.hpp"
#include "phone_document.hpp"

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::image {

class OutputNotWritten : public WorkshopError {
public:
    using TypedError::TypedError;
};

// Runs `write` with the path it is to write (a temporary beside `output`), then renames
// that file over `output`; through a link, the file it names is replaced. A failure of
// `write` or of the rename removes the temporary and throws OutputNotWritten
// (NothingWrittenTo the output, around the failure, the temporary's name in it read as
// the output's). A device or pipe named as the output (/dev/null, a fifo) cannot be
// renamed over and is written where it is.
void writeThroughTemporary(const std::string& output, const std::function<void(const std::string& path)>& write);

// The S-record patch of the regions, written to `output` through writeThroughTemporary.
// Refuses the document's own phone file (IsOpenPhoneFile) before anything is written;
// no regions write no patch.
void writeEditsAsPatch(const PhoneDocument& document, const std::string& output, const std::vector<Region>& regions);

}  // namespace zevran::image
