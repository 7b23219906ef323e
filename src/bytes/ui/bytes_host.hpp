// What the byte view needs of the window beyond a tab's TabHost: the one way its edits
// enter the image (an undo step), the file's bytes under the edits, the patch of every
// change, and the rows of the other tabs that own bytes.
#pragma once

#include "image/byte_edits.hpp"
#include "image/byte_owners.hpp"
#include "window/tab_host.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace zevran::bytes {

class BytesHost {
public:
    virtual ~BytesHost() = default;

    virtual window::TabHost& tabHost() = 0;
    // Overwrites the image's bytes from `address` on as one undo step, in a "bin" image as
    // in an "asf" one; false when nothing could be written (no phone file, past the end).
    virtual bool overwriteBytes(std::int64_t address, std::span<const std::uint8_t> bytes) = 0;
    // The phone file's bytes wherever the image has been written since it was opened.
    virtual const image::OriginalBytes& originals() const = 0;
    // "Write changes as patch...": every byte that differs from the file as opened, as one
    // S-record patch. False when nothing was written (cancelled, failed, nothing changed).
    virtual bool writeChangesAsPatch() = 0;
    // The byte ranges of the found tones, the picture rows' frames and the edit list.
    virtual std::vector<image::ByteOwner> ownedRanges() const = 0;
    // Selects the owner's row on its tab and shows that tab.
    virtual void showOwner(const image::ByteOwner& owner) = 0;
};

}  // namespace zevran::bytes
