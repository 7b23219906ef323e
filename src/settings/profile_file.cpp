#include "profile_file.hpp"

#include "image/file_io.hpp"
#include "image/table_text.hpp"

#include <algorithm>
#include <cctype>
#include <vector>

namespace zevran::app {

namespace {

struct Line {
    std::size_t begin;  // first byte of the line
    std::size_t end;    // one past its last byte, before the line end
    std::size_t next;   // first byte of the next line
};

// The table-file line reading, with each line's place in the text kept, since a write
// splices the text around one line.
std::vector<Line> splitLines(std::string_view text)
{
    const auto views = image::splitTextLines(text);
    std::vector<Line> lines;
    lines.reserve(views.size());
    for (std::size_t i = 0; i < views.size(); ++i) {
        const auto begin = static_cast<std::size_t>(views[i].data() - text.data());
        const std::size_t next =
            i + 1 < views.size() ? static_cast<std::size_t>(views[i + 1].data() - text.data()) : text.size();
        lines.push_back({begin, begin + views[i].size(), next});
    }
    return lines;
}

std::string_view trim(std::string_view text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

bool sameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

// The section name of a "[name]" line, or nullopt for any other line.
std::optional<std::string_view> sectionName(std::string_view line)
{
    line = trim(line);
    if (line.empty() || line.front() != '[') return std::nullopt;
    const auto close = line.find(']');
    if (close == std::string_view::npos) return std::nullopt;
    return trim(line.substr(1, close - 1));
}

struct KeyLine {
    std::string_view key;
    std::string_view value;
};

std::optional<KeyLine> keyLine(std::string_view line)
{
    std::string_view trimmed = trim(line);
    if (trimmed.empty() || trimmed.front() == ';') return std::nullopt;
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    return KeyLine{trim(line.substr(0, equals)), trim(line.substr(equals + 1))};
}

struct Location {
    bool sectionFound = false;
    std::optional<std::size_t> keyIndex;  // line of the key
    std::size_t lastContentLine = 0;      // last non-blank line of the section (its header at least)
};

Location locate(std::string_view text, const std::vector<Line>& lines, std::string_view section, std::string_view key)
{
    Location where;
    bool inside = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view line = text.substr(lines[i].begin, lines[i].end - lines[i].begin);
        if (auto name = sectionName(line)) {
            if (where.sectionFound && inside) break;  // the first matching section is the one used
            inside = sameName(*name, section);
            if (inside) {
                where.sectionFound = true;
                where.lastContentLine = i;
            }
            continue;
        }
        if (!inside) continue;
        if (!trim(line).empty()) where.lastContentLine = i;
        auto entry = keyLine(line);
        if (entry && sameName(entry->key, key)) {
            where.keyIndex = i;
            return where;
        }
    }
    return where;
}

}  // namespace

std::optional<std::string> readProfileValue(std::string_view text, std::string_view section, std::string_view key)
{
    const auto lines = splitLines(text);
    const Location where = locate(text, lines, section, key);
    if (!where.keyIndex) return std::nullopt;
    const Line& line = lines[*where.keyIndex];
    std::string_view value = keyLine(text.substr(line.begin, line.end - line.begin))->value;
    return std::string(value.substr(0, kProfileValueLimit));
}

std::string writeProfileValue(std::string_view text, std::string_view section, std::string_view key,
                              std::string_view value)
{
    const auto lines = splitLines(text);
    const Location where = locate(text, lines, section, key);
    std::string result;
    result.reserve(text.size() + key.size() + value.size() + section.size() + 8);
    if (where.keyIndex) {
        const Line& line = lines[*where.keyIndex];
        std::string_view original = text.substr(line.begin, line.end - line.begin);
        result.append(text.substr(0, line.begin));
        result.append(keyLine(original)->key);
        result += '=';
        result.append(value);
        result.append(text.substr(line.end));
        return result;
    }
    const std::string entry = std::string(key) + "=" + std::string(value) + "\r\n";
    if (where.sectionFound) {
        const Line& after = lines[where.lastContentLine];
        result.append(text.substr(0, after.next));
        if (after.next == after.end) result += "\r\n";  // the section's last line had no line end
        result += entry;
        result.append(text.substr(after.next));
        return result;
    }
    result.append(text);
    if (!result.empty() && result.back() != '\n' && result.back() != '\r') result += "\r\n";
    result += '[';
    result.append(section);
    result += "]\r\n";
    result += entry;
    return result;
}

std::optional<std::string> ProfileFile::read(std::string_view section, std::string_view key) const
{
    std::string text;
    try {
        auto bytes = image::readWholeFile(m_path);
        text.assign(bytes.begin(), bytes.end());
    } catch (const image::FileError&) {
        return std::nullopt;
    }
    return readProfileValue(text, section, key);
}

bool ProfileFile::write(std::string_view section, std::string_view key, std::string_view value) const
{
    std::string text;
    try {
        auto bytes = image::readWholeFile(m_path);
        text.assign(bytes.begin(), bytes.end());
    } catch (const image::FileError&) {
        // A missing file is created; an unreadable one is left alone below if it cannot be replaced.
    }
    const std::string updated = writeProfileValue(text, section, key, value);
    try {
        image::saveFileSafely(m_path, std::span(reinterpret_cast<const std::uint8_t*>(updated.data()), updated.size()));
        return true;
    } catch (const image::FileError&) {
        return false;
    }
}

std::string ProfileFile::ReadSetting(std::string_view section, std::string_view key, std::string_view fallback) const
{
    auto value = read(section, key);
    if (value && !value->empty()) return *value;
    write(section, key, fallback);
    return std::string(fallback);
}

bool ProfileFile::WriteSetting(std::string_view section, std::string_view key, std::string_view value) const
{
    return write(section, key, value);
}

}  // namespace zevran::app
