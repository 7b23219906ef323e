#include "table_text.hpp"

#include <algorithm>

namespace zevran::image {

std::string Del_TAb(std::string_view field)
{
    while (!field.empty() && field.front() == ' ') field.remove_prefix(1);
    while (!field.empty() && field.back() == ' ') field.remove_suffix(1);
    std::string cleaned(field);
    cleaned.erase(std::remove(cleaned.begin(), cleaned.end(), '\t'), cleaned.end());
    return cleaned;
}

std::vector<std::string_view> splitTextLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t end = text.find_first_of("\r\n", pos);
        if (end == std::string_view::npos) {
            lines.push_back(text.substr(pos));
            break;
        }
        lines.push_back(text.substr(pos, end - pos));
        pos = end + 1;
        if (text[end] == '\r' && pos < text.size() && text[pos] == '\n') ++pos;
    }
    return lines;
}

std::vector<std::string_view> splitAtSpaces(std::string_view line)
{
    std::vector<std::string_view> fields;
    std::size_t pos = 0;
    for (;;) {
        const std::size_t space = line.find(' ', pos);
        if (space == std::string_view::npos) {
            fields.push_back(line.substr(pos));
            return fields;
        }
        fields.push_back(line.substr(pos, space - pos));
        pos = space + 1;
    }
}

}  // namespace zevran::image
