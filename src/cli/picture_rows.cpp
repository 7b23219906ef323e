#include "picture_rows.hpp"

#include "image/file_io.hpp"

#include <stdexcept>

namespace zevran::cli {

std::vector<pictures::PictureEntry> openPictureTable(const std::string& path, bool recomputeSize)
{
    const auto bytes = image::readWholeFile(path);
    try {
        return pictures::readPictureTable(std::string(bytes.begin(), bytes.end()), recomputeSize);
    } catch (const std::exception& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

const pictures::PictureEntry& pictureRow(const std::vector<pictures::PictureEntry>& rows, long number,
                                         const std::string& table)
{
    if (number < 1 || static_cast<std::size_t>(number) > rows.size())
        throw std::runtime_error(table + ": there is no row " + std::to_string(number) + " among its " +
                                 std::to_string(rows.size()));
    return rows[static_cast<std::size_t>(number) - 1];
}

}  // namespace zevran::cli
