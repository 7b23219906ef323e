#include "undo_history.hpp"

#include <algorithm>

namespace zevran::image {

std::size_t UndoStep::byteCount() const
{
    std::size_t bytes = 0;
    for (const UndoChange& change : changes) bytes += change.before.size() + change.after.size();
    return bytes;
}

namespace {

// Stretches of changed bytes closer than this are kept as one change: fewer, larger
// changes cost less bookkeeping than one per byte where every other byte changed.
constexpr std::size_t kJoinGap = 16;

bool regionsOverlap(std::vector<std::pair<std::size_t, std::size_t>> spans)
{
    std::sort(spans.begin(), spans.end());
    for (std::size_t k = 1; k < spans.size(); ++k)
        if (spans[k].first < spans[k - 1].second) return true;
    return false;
}

}  // namespace

UndoStep stepForRegions(std::span<const std::uint8_t> image, const std::vector<Region>& regions)
{
    // The parts of each region that fall inside the image, as [begin, end).
    std::vector<std::pair<std::size_t, std::size_t>> spans;
    for (const Region& region : regions) {
        if (region.first < 0 || static_cast<std::size_t>(region.first) >= image.size()) {
            spans.emplace_back(0, 0);
            continue;
        }
        const auto first = static_cast<std::size_t>(region.first);
        spans.emplace_back(first, first + std::min(region.bytes.size(), image.size() - first));
    }
    // Later regions are written over earlier ones, so where they overlap each change is
    // measured against the image as the regions before it have left it: a copy of the
    // stretch they cover. Apart (the usual case) the image itself serves.
    std::vector<std::uint8_t> scratch;
    std::size_t scratchBegin = 0;
    if (regionsOverlap(spans)) {
        scratchBegin = image.size();
        std::size_t scratchEnd = 0;
        for (const auto& [begin, end] : spans) {
            if (begin == end) continue;
            scratchBegin = std::min(scratchBegin, begin);
            scratchEnd = std::max(scratchEnd, end);
        }
        scratch.assign(image.begin() + static_cast<std::ptrdiff_t>(scratchBegin),
                       image.begin() + static_cast<std::ptrdiff_t>(scratchEnd));
    }
    auto current = [&](std::size_t at) { return scratch.empty() ? image[at] : scratch[at - scratchBegin]; };

    UndoStep step;
    for (std::size_t k = 0; k < regions.size(); ++k) {
        const auto [begin, end] = spans[k];
        const std::uint8_t* bytes = regions[k].bytes.data();  // bytes[i] lands at begin + i
        std::size_t at = begin;
        for (;;) {
            while (at < end && bytes[at - begin] == current(at)) ++at;
            if (at == end) break;
            const std::size_t start = at;
            std::size_t changedEnd = at;
            while (at < end && at - changedEnd < kJoinGap) {
                if (bytes[at - begin] != current(at)) changedEnd = at + 1;
                ++at;
            }
            at = changedEnd;
            UndoChange change;
            change.first = static_cast<std::int32_t>(start);
            for (std::size_t i = start; i < changedEnd; ++i) change.before.push_back(current(i));
            change.after.assign(bytes + (start - begin), bytes + (changedEnd - begin));
            if (!scratch.empty())
                std::copy(change.after.begin(), change.after.end(),
                          scratch.begin() + static_cast<std::ptrdiff_t>(start - scratchBegin));
            step.changes.push_back(std::move(change));
        }
    }
    return step;
}

void UndoHistory::reset()
{
    m_steps.clear();
    m_position = 0;
    m_clean = 0;
    m_dropped = 0;
    m_bytes = 0;
}

bool UndoHistory::record(UndoStep step)
{
    if (step.changes.empty()) return false;
    while (m_steps.size() > m_position) {
        m_bytes -= m_steps.back().byteCount();
        m_steps.pop_back();
    }
    if (m_clean && *m_clean > m_dropped + m_position) m_clean.reset();
    m_bytes += step.byteCount();
    m_steps.push_back(std::move(step));
    ++m_position;
    while (m_bytes > m_byteLimit && m_steps.size() > 1) {
        m_bytes -= m_steps.front().byteCount();
        m_steps.pop_front();
        --m_position;
        ++m_dropped;
    }
    if (m_clean && *m_clean < m_dropped) m_clean.reset();
    return true;
}

bool UndoHistory::fits(std::span<const std::uint8_t> image, const UndoStep& step)
{
    return std::all_of(step.changes.begin(), step.changes.end(), [&](const UndoChange& change) {
        return change.first >= 0 && static_cast<std::size_t>(change.first) + change.after.size() <= image.size();
    });
}

bool UndoHistory::undo(std::span<std::uint8_t> image)
{
    if (!canUndo() || !fits(image, m_steps[m_position - 1])) return false;
    const UndoStep& step = m_steps[--m_position];
    for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
        std::copy(change->before.begin(), change->before.end(), image.begin() + change->first);
    return true;
}

bool UndoHistory::redo(std::span<std::uint8_t> image)
{
    if (!canRedo() || !fits(image, m_steps[m_position])) return false;
    const UndoStep& step = m_steps[m_position++];
    for (const UndoChange& change : step.changes)
        std::copy(change.after.begin(), change.after.end(), image.begin() + change.first);
    return true;
}

void UndoHistory::markClean() { m_clean = m_dropped + m_position; }

bool UndoHistory::isClean() const { return m_clean && *m_clean == m_dropped + m_position; }

}  // namespace zevran::image
