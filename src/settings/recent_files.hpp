// The phone files opened last, newest first, and their place in zevran.ini: section
// "Recent Files", keys File1 (the newest) to File8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::app {
class ProfileFile;
}

namespace zevran::image {

inline constexpr std::string_view kRecentFilesSection = "Recent Files";

class RecentFiles {
public:
    static constexpr std::size_t kLimit = 8;

    RecentFiles() = default;
    // The list as stored, newest first; empty names and repeats are dropped, and only
    // the first eight kept.
    explicit RecentFiles(const std::vector<std::string>& paths);

    // The file just opened goes to the front; an earlier entry of the same file (the
    // same path once "." and ".." are resolved) goes, and so does the ninth.
    void add(const std::string& path);
    // Returns false when the file is not in the list.
    bool remove(const std::string& path);
    void clear() { m_paths.clear(); }

    const std::vector<std::string>& paths() const { return m_paths; }
    bool empty() const { return m_paths.empty(); }

    // Whether a path can be kept as one profile value, read back unchanged: not empty,
    // on one line, no blanks at either end (values are trimmed) and at most 255 bytes.
    static bool storable(std::string_view path);

private:
    std::vector<std::string> m_paths;
};

// The list as kept in the profile text / file. A missing section is an empty list.
RecentFiles readRecentFiles(std::string_view profileText);
RecentFiles readRecentFiles(const app::ProfileFile& profile);

// The profile text with File1 to File8 set to the list (unused keys empty); a path
// that cannot be kept as a value is left out. Every other line stays as it was.
std::string writeRecentFiles(std::string_view profileText, const RecentFiles& files);
// The same on the file, written once; false when it could not be written.
bool writeRecentFiles(const app::ProfileFile& profile, const RecentFiles& files);

}  // namespace zevran::image
