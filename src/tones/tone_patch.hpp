// Turning the checked pairs of the replacement plan into patch regions: each region
// covers its whole slot, the new tone first and zero bytes up to the slot's end, so
// nothing after the slot ever moves.
#pragma once

#include "image/failure.hpp"

#include "tone_plan.hpp"

#include "image/patch_writer.hpp"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zevran::tones {

// A pair that cannot be written; the message names the plan row and the reason.
class TonePlanError : public image::WorkshopError {
public:
    using TypedError::TypedError;
};

// Fields 1 and 4 of a slot text split at single spaces: start as hex text, size as
// decimal (field 3, the end, is not needed: the region always covers `size` bytes).
// None when the text has too few fields to hold them.
struct PlanSlotFields {
    std::int64_t start = 0;
    std::int64_t size = 0;
};
std::optional<PlanSlotFields> planSlotFields(std::string_view slotText);

// The file name is everything before the second-to-last space of a file text (so a
// name may hold spaces), the size the word between the last two spaces ("0" when
// there is no such word).
struct PlanFileFields {
    std::string name;
    std::int64_t size = 0;
};
PlanFileFields planFileFields(std::string_view fileText);

enum class PlanRowResult {
    Region,     // the region is ready
    Skipped,    // unchecked, or a cell is missing
    EmptySlot,  // the slot's size is 0 or less: nothing to write into
    TooLarge,   // the new tone does not fit its slot: the output stops here
};

struct PlanRowPatch {
    PlanRowResult result = PlanRowResult::Skipped;
    image::Region region;
};

// The region of one plan row: the tone file (found in `folder`) read into a zero-filled
// buffer of the slot's size, placed at the slot's start. A slot that does not lie
// inside an image of `imageLength` bytes (a table made from another image) throws
// TonePlanError; a file that cannot be read throws image::FileError.
PlanRowPatch tonePatchRegion(const ReplacementRow& row, std::string_view folder, std::int64_t imageLength);

}  // namespace zevran::tones
