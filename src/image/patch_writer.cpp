#include "patch_writer.hpp"

#include "file_io.hpp"
#include "hex_text.hpp"
#include "phone_file.hpp"
#include "srecord.hpp"
#include "srecord_reader.hpp"

#include <algorithm>
#include <filesystem>
#include <memory>

namespace zevran::image {

void writeSRecordPatch(const std::string& path, const std::vector<Region>& regions)
{
    PatchFile file;
    for (std::size_t k = 0; k < regions.size(); ++k) {
        const Region& region = regions[k];
        WriteSRecordRegion(file, region.bytes, region.first, region.last, path, k == 0, k + 1 == regions.size());
    }
}

bool patchImage(ImageState& state, const std::vector<Region>& regions)
{
    bool allInside = true;
    for (const Region& region : regions)
        allInside =
            CopyToImage(state, region.bytes, region.first, static_cast<std::int32_t>(region.bytes.size())) && allInside;
    return allInside;
}

void Saveaxf(const ImageState& state)
{
    // The image always has the length of the file it was read from. A file of another
    // length is not that file (an empty file opened since, say): it is left alone.
    // A "bin" phone file is never written: its changes leave as S-record patches.
    if (classifyPhoneFile(state.FirmwarePath) != "asf") throw FileError(Reason::NotAsfFile, {state.FirmwarePath});
    std::error_code error;
    const std::uintmax_t onDisk = std::filesystem::file_size(state.FirmwarePath, error);
    if (!error && onDisk != state.FirmwareImage.size())
        throw FileError(Reason::SizeOnDiskDiffers,
                        {state.FirmwarePath, std::to_string(onDisk), std::to_string(state.FirmwareImage.size())});
    saveFileSafely(state.FirmwarePath, state.FirmwareImage);
}

void applySRecordPatch(std::vector<std::uint8_t>& image, std::istream& patch, PatchGrowth growth)
{
    LineSplitter lines;
    SRecordData record;
    std::uint64_t lineNumber = 0;
    auto layOver = [&](std::string_view line) {
        readStrictRecord(line, ++lineNumber, record);
        if (!record.isData) return;
        const std::uint64_t end = std::uint64_t{record.address} + record.bytes.size();
        if (growth == PatchGrowth::GrowWithFF && end > image.size()) {
            if (end > kLargestGrownImage)
                throw SRecordError(lineNumber, Reason::RecordGrowsTooFar,
                                   {HexPad(record.address, 8), std::to_string(record.bytes.size())});
            image.resize(static_cast<std::size_t>(end), 0xFF);
        }
        if (end > image.size())
            throw SRecordError(
                lineNumber, Reason::RecordPastImageEnd,
                {HexPad(record.address, 8), std::to_string(record.bytes.size()), std::to_string(image.size())});
        std::copy(record.bytes.begin(), record.bytes.end(), image.begin() + record.address);
    };
    // Patches are small; reading them in 64 KiB pieces costs nothing, and the block
    // is left unset since only what a read fills is looked at.
    constexpr std::size_t kReadBlock = 1 << 16;
    const auto block = std::make_unique_for_overwrite<char[]>(kReadBlock);
    while (patch) {
        patch.read(block.get(), static_cast<std::streamsize>(kReadBlock));
        lines.feed(std::string_view(block.get(), static_cast<std::size_t>(patch.gcount())), layOver);
    }
    if (patch.bad()) throw FileError(Reason::PatchUnreadable);
    lines.finish(layOver);
}

}  // namespace zevran::image
