// INI files read and written the way Windows private profile files are, because the
// layout of zevran.ini and the language files is part of the product: names match
// without regard to case, values are trimmed and cut to 255 bytes, and a write touches
// only the line of its key, keeping every other byte of the file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zevran::app {

inline constexpr std::size_t kProfileValueLimit = 255;

// The value of `key` in `section` of the profile text, trimmed of blanks and cut to
// 255 bytes; nullopt when the section or key is missing.
std::optional<std::string> readProfileValue(std::string_view text, std::string_view section, std::string_view key);

// The profile text with `key` in `section` set to `value`: the key's line is
// rewritten, or the key is added at the end of its section, or the section is added
// at the end of the text. New lines end in CR LF.
std::string writeProfileValue(std::string_view text, std::string_view section, std::string_view key,
                              std::string_view value);

// A profile file on disk. A missing or unreadable file reads as empty; a write that
// cannot be made reports false and leaves the file as it was.
class ProfileFile {
public:
    explicit ProfileFile(std::string path) : m_path(std::move(path)) {}

    const std::string& path() const { return m_path; }
    void setPath(std::string path) { m_path = std::move(path); }

    std::optional<std::string> read(std::string_view section, std::string_view key) const;
    bool write(std::string_view section, std::string_view key, std::string_view value) const;

    // The value, or - when the key is missing or empty - the default, which is then
    // written into the file, so a fresh file fills with every key asked for.
    std::string ReadSetting(std::string_view section, std::string_view key, std::string_view fallback) const;
    bool WriteSetting(std::string_view section, std::string_view key, std::string_view value) const;

private:
    std::string m_path;
};

}  // namespace zevran::app
