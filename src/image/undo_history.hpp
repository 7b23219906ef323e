// The undo history of the image in memory: every change made to it (an output into an
// "asf" image, an applied comparison) is one step holding, for each region it wrote,
// the bytes before and after. A clean marker remembers the step at which the image
// equals its phone file, so the unsaved-changes flag can follow the image's real state.
#pragma once

#include "patch_writer.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace zevran::image {

// One region of a step: the bytes from `first` on, before and after the change.
// Both arrays have the same length.
struct UndoChange {
    std::int32_t first = 0;
    std::vector<std::uint8_t> before;
    std::vector<std::uint8_t> after;
};

struct UndoStep {
    std::vector<UndoChange> changes;  // in the order they were written

    std::size_t byteCount() const;
};

// The step that laying `regions` over `image` (as patchImage does) makes: each
// region's bytes cut at the image's end, with the image's bytes they replace. Regions
// or parts of them that would change nothing are left out.
UndoStep stepForRegions(std::span<const std::uint8_t> image, const std::vector<Region>& regions);

class UndoHistory {
public:
    // The history holds at most this many bytes (before and after, all steps); the
    // oldest steps go first when a new one would pass it. The newest step always stays.
    static constexpr std::size_t kDefaultByteLimit = 512u << 20;

    explicit UndoHistory(std::size_t byteLimit = kDefaultByteLimit) : m_byteLimit(byteLimit) {}

    // A freshly opened image: no steps, and clean.
    void reset();

    // Adds a step that has already been made to the image. The steps that could be
    // redone are dropped. An empty step is not recorded: false.
    bool record(UndoStep step);

    bool canUndo() const { return m_position > 0; }
    bool canRedo() const { return m_position < m_steps.size(); }

    // Puts the bytes before the last step back into the image (later changes of the
    // step first, since they were written over the earlier ones). False when there is
    // nothing to undo or the image is too short for the step (then nothing changes).
    bool undo(std::span<std::uint8_t> image);
    // Writes the step after the current one again. False as for undo.
    bool redo(std::span<std::uint8_t> image);

    // The image now equals its phone file (it was just saved).
    void markClean();
    // True when the image is at the state of the last open or save. Undoing past a
    // save, or doing a new step after undoing, leaves the clean state out of reach.
    bool isClean() const;

    // The steps undo and redo would write next; null when there is none.
    const UndoStep* stepToUndo() const { return canUndo() ? &m_steps[m_position - 1] : nullptr; }
    const UndoStep* stepToRedo() const { return canRedo() ? &m_steps[m_position] : nullptr; }

    std::size_t undoCount() const { return m_position; }
    std::size_t redoCount() const { return m_steps.size() - m_position; }
    std::size_t byteCount() const { return m_bytes; }

private:
    static bool fits(std::span<const std::uint8_t> image, const UndoStep& step);

    std::deque<UndoStep> m_steps;
    std::size_t m_position = 0;  // steps before it are done, steps from it on are undone
    // Where the clean state lies, counted in steps from the first ever recorded, so that
    // dropping old steps keeps it in place; nullopt once no sequence of undo and redo
    // can reach it.
    std::optional<std::size_t> m_clean = 0;
    std::size_t m_dropped = 0;  // old steps dropped for room
    std::size_t m_bytes = 0;
    std::size_t m_byteLimit;
};

}  // namespace zevran::image
