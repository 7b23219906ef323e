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

std::int64_t frameNumberArgument(const Arguments& args)
{
    const auto text = args.value("--frame");
    if (!text) return 1;
    const long number = numberArgument(*text, "--frame");
    if (number == 0) throw UsageError("--frame 0: frames count from 1, as the player shows them");
    return number;
}

std::int64_t frameIndexOfRow(std::int64_t number, const pictures::PictureEntry& row, std::int64_t frames)
{
    if (number > frames)
        throw std::runtime_error(placeOf(row) + " has " + std::to_string(frames) +
                                 (frames == 1 ? " frame" : " frames") + "; there is no frame " +
                                 std::to_string(number));
    return number - 1;
}

std::string placeOf(const pictures::PictureEntry& row) { return "row " + row.number + " (" + row.name + ")"; }

}  // namespace zevran::cli
