#include "patch_writer.hpp"

#include "file_io.hpp"
#include "srecord.hpp"

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
        allInside = CopyToImage(state, region.bytes, region.first, static_cast<std::int32_t>(region.bytes.size())) &&
                    allInside;
    return allInside;
}

void Saveaxf(const ImageState& state) { saveFileSafely(state.FirmwarePath, state.FirmwareImage); }

}  // namespace zevran::image
