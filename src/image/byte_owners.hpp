// What each byte of the image belongs to, as far as the workshop knows it: the tones
// found, the frames of the picture table's rows and the slots of the string edit list.
// The tabs report their rows as typed ranges; the map answers per byte, fast enough to
// colour every byte on screen at each repaint.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace zevran::image {

// Listed by precedence: where ranges overlap, the earlier kind colours the byte.
enum class OwnerKind : std::uint8_t { EditRow, PictureFrame, Tone };

struct ByteOwner {
    OwnerKind kind = OwnerKind::Tone;
    int row = 0;    // index of the row in its list, from 0
    int frame = 0;  // picture frames only, from 0
    std::int64_t first = 0;
    std::int64_t end = 0;  // one past the last byte

    bool operator==(const ByteOwner&) const = default;
};

class ByteOwners {
public:
    ByteOwners() = default;
    // Empty ranges, and ranges wholly before address 0, are left out.
    explicit ByteOwners(std::vector<ByteOwner> ranges);

    // Every owner of the byte, by precedence, then by start address.
    std::vector<ByteOwner> ownersAt(std::int64_t address) const;
    // The owner that colours the byte, or none.
    std::optional<ByteOwner> ownerAt(std::int64_t address) const;
    // Only its kind: what a repaint asks of every byte on screen, without allocating.
    std::optional<OwnerKind> kindAt(std::int64_t address) const;

    bool empty() const { return m_ranges.empty(); }
    std::size_t size() const { return m_ranges.size(); }

private:
    template <typename Visit>
    void visitOwners(std::int64_t address, Visit visit) const;

    std::vector<ByteOwner> m_ranges;    // by start address
    std::vector<std::int64_t> m_reach;  // the furthest end among ranges 0..k
};

}  // namespace zevran::image
