// Outputs written under a temporary name beside their target and renamed over it only
// when complete, so a stop, a failure or a crash never leaves the target half written.
#pragma once

#include <fstream>
#include <string>
#include <string_view>

namespace zevran::image {

// The marker between a target's name and the six random characters of its temporary.
inline constexpr std::string_view kSavingMarker = ".saving-";
inline constexpr std::string_view kConvertingMarker = ".converting-";

// Removes the temporaries `target` + `marker` + six characters that a killed run left
// beside `target`; other files are never touched.
void removeStaleTemporaries(const std::string& target, std::string_view marker);

// A stream onto a new temporary file beside `target` (named with `marker`), whose
// stale predecessors are removed first. commit() closes it and renames it over
// `target`; an output dropped without commit() is removed, and `target` stays as it was.
class TemporaryOutput {
public:
    TemporaryOutput(std::string target, std::string_view marker);
    ~TemporaryOutput();
    TemporaryOutput(const TemporaryOutput&) = delete;
    TemporaryOutput& operator=(const TemporaryOutput&) = delete;

    std::ofstream& stream() { return m_stream; }
    const std::string& path() const { return m_path; }
    // Throws FileError when the bytes did not all reach the disk or the rename fails.
    void commit();

private:
    std::string m_target;
    std::string m_path;
    std::ofstream m_stream;
    bool m_committed = false;
};

}  // namespace zevran::image
