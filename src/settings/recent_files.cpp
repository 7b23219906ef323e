#include "recent_files.hpp"

#include "settings/profile_file.hpp"
#include "image/file_io.hpp"

#include <algorithm>
#include <filesystem>

namespace zevran::image {

namespace {

bool samePath(const std::string& a, const std::string& b)
{
    return a == b || std::filesystem::path(a).lexically_normal() == std::filesystem::path(b).lexically_normal();
}

std::string keyOf(std::size_t index) { return "File" + std::to_string(index + 1); }

std::string readText(const std::string& path)
{
    try {
        const auto bytes = readWholeFile(path);
        return std::string(bytes.begin(), bytes.end());
    } catch (const FileError&) {
        return {};
    }
}

}  // namespace

RecentFiles::RecentFiles(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths) {
        if (m_paths.size() == kLimit) break;
        if (path.empty()) continue;
        if (std::none_of(m_paths.begin(), m_paths.end(), [&](const std::string& kept) { return samePath(kept, path); }))
            m_paths.push_back(path);
    }
}

void RecentFiles::add(const std::string& path)
{
    if (path.empty()) return;
    remove(path);
    m_paths.insert(m_paths.begin(), path);
    if (m_paths.size() > kLimit) m_paths.resize(kLimit);
}

bool RecentFiles::remove(const std::string& path)
{
    const auto end =
        std::remove_if(m_paths.begin(), m_paths.end(), [&](const std::string& kept) { return samePath(kept, path); });
    const bool found = end != m_paths.end();
    m_paths.erase(end, m_paths.end());
    return found;
}

bool RecentFiles::storable(std::string_view path)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    return !path.empty() && path.size() <= app::kProfileValueLimit &&
           path.find_first_of("\r\n") == std::string_view::npos && !blank(path.front()) && !blank(path.back());
}

RecentFiles readRecentFiles(std::string_view profileText)
{
    std::vector<std::string> paths;
    for (std::size_t k = 0; k < RecentFiles::kLimit; ++k)
        if (auto value = app::readProfileValue(profileText, kRecentFilesSection, keyOf(k))) paths.push_back(*value);
    return RecentFiles(paths);
}

RecentFiles readRecentFiles(const app::ProfileFile& profile) { return readRecentFiles(readText(profile.path())); }

std::string writeRecentFiles(std::string_view profileText, const RecentFiles& files)
{
    std::vector<std::string_view> kept;
    for (const std::string& path : files.paths())
        if (RecentFiles::storable(path)) kept.push_back(path);
    std::string text(profileText);
    for (std::size_t k = 0; k < RecentFiles::kLimit; ++k)
        text = app::writeProfileValue(text, kRecentFilesSection, keyOf(k), k < kept.size() ? kept[k] : "");
    return text;
}

bool writeRecentFiles(const app::ProfileFile& profile, const RecentFiles& files)
{
    // One write for all eight keys: the settings file is replaced whole each time.
    const std::string text = writeRecentFiles(readText(profile.path()), files);
    try {
        saveFileSafely(profile.path(), std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
        return true;
    } catch (const FileError&) {
        return false;
    }
}

}  // namespace zevran::image
