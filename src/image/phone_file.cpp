#include "phone_file.hpp"

#include "file_io.hpp"
#include "hex_text.hpp"

#include <filesystem>

namespace zevran::image {

namespace {

constexpr std::string_view kVersionStringMarker = "56657273696F6E537472696E673A";  // "VersionString:"
constexpr std::string_view kRevisionMarker = "5265762053";                         // "Rev S"
constexpr std::int64_t kVersionLength = 8;

std::string versionBytes(const ImageState& state, std::int64_t first, std::string_view marker)
{
    if (first < 0 || first + kVersionLength > static_cast<std::int64_t>(state.FirmwareImage.size()))
        throw VersionOutOfImage(Reason::VersionPastEnd,
                                {std::string(marker), HexPad(static_cast<std::uint32_t>(state.LastMatch), 8)});
    auto begin = state.FirmwareImage.begin() + first;
    return std::string(begin, begin + kVersionLength);
}

}  // namespace

std::string classifyPhoneFile(std::string_view path)
{
    const char last = path.empty() ? '\0' : path.back();
    if (last == 'N' || last == 'n') return "bin";
    if (last == 'F' || last == 'f') return "asf";
    return "other";
}

std::optional<std::string> findVersionText(ImageState& state)
{
    std::optional<std::string> version;
    state.LastMatch = 0;
    if (FindHexInImage(state, kVersionStringMarker)) {
        // 14 marker bytes and 3 more come before the version.
        version = versionBytes(state, std::int64_t{state.LastMatch} + 17, "VersionString:");
    } else {
        state.LastMatch = 0;
        if (FindHexInImage(state, kRevisionMarker))
            version = versionBytes(state, std::int64_t{state.LastMatch} - 12, "Rev S");
    }
    // Every later search of the image starts again from its beginning.
    state.LastMatch = 0;
    return version;
}

std::vector<std::uint8_t> readPhoneFile(const std::string& path)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error) checkImageSize(path, size);
    return readWholeFile(path);
}

void loadPhoneFile(ImageState& state, const std::string& path)
{
    std::vector<std::uint8_t> bytes = readPhoneFile(path);
    if (bytes.empty()) throw EmptyPhoneFile(Reason::EmptyFile, {path});
    setImage(state, path, std::move(bytes));
    state.LastMatch = 0;
    state.FileKind = classifyPhoneFile(path);
    state.ImageLoaded = state.FileKind != "other";
}

}  // namespace zevran::image
