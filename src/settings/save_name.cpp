#include "save_name.hpp"

namespace zevran::app {

std::string filterExtension(std::string_view patterns)
{
    const std::size_t begin = patterns.find_first_not_of("; ");
    if (begin == std::string_view::npos) return {};
    const std::size_t end = patterns.find_first_of("; ", begin);
    const std::string_view first = patterns.substr(begin, end == std::string_view::npos ? end : end - begin);
    if (first.size() < 3 || first.substr(0, 2) != "*.") return {};
    const std::string_view extension = first.substr(2);
    if (extension.find_first_of("*?[]./\\") != std::string_view::npos) return {};
    return std::string(extension);
}

std::string withFilterExtension(std::string_view name, std::string_view patterns)
{
    const std::size_t slash = name.find_last_of("/\\");
    const std::string_view file = slash == std::string_view::npos ? name : name.substr(slash + 1);
    const std::string extension = filterExtension(patterns);
    if (file.empty() || file.find('.', 1) != std::string_view::npos || extension.empty()) return std::string(name);
    return std::string(name) + "." + extension;
}

}  // namespace zevran::app
