// The open phone file: its bytes held whole as one image, its path, kind and identity
// on disk, and every change made to it since it was opened, with undo and redo. The
// window and zevran-cli each hold one; every replacement of the image (Open, Recent,
// drop, hand-over, Quit) first asks mayReplaceWithoutAsking().
#pragma once

#include "byte_edits.hpp"
#include "firmware_image.hpp"
#include "patch_writer.hpp"
#include "undo_history.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zevran::image {

// Which file on disk a path names: the same device and inode is the same file under
// any name or link.
struct FileIdentity {
    std::uintmax_t device = 0;
    std::uintmax_t inode = 0;

    bool operator==(const FileIdentity&) const = default;
};

// nullopt when nothing can be found at the path.
std::optional<FileIdentity> identityOf(const std::string& path);

class PhoneDocument {
public:
    PhoneDocument() = default;
    explicit PhoneDocument(std::size_t undoByteLimit) : m_history(undoByteLimit) {}

    ImageState& state() { return m_state; }
    const ImageState& state() const { return m_state; }
    const std::vector<std::uint8_t>& bytes() const { return m_state.FirmwareImage; }
    const std::string& path() const { return m_state.FirmwarePath; }
    const std::string& kind() const { return m_state.FileKind; }
    bool loaded() const { return m_state.ImageLoaded; }
    // A loaded "bin" image: its edits leave as S-record patch files.
    bool takesSRecordPatch() const { return loaded() && kind() == "bin"; }
    // A loaded "asf" image: its edits are laid into the image and saved.
    bool takesInImagePatch() const { return loaded() && kind() == "asf"; }

    // Reads the phone file and makes it the document: kind from its name, the search
    // position at the start, no steps, nothing unsaved. A file that cannot be read
    // throws (FileError) and leaves the document as it was. An empty file throws
    // EmptyPhoneFile; the document takes its path but keeps the old bytes, which a save
    // then refuses to write there (the lengths differ).
    void open(const std::string& path);
    // The 8 version bytes of the image (findVersionText); nullopt without a marker. A
    // marker too near an end throws VersionOutOfImage and leaves the document of kind
    // "other" and not loaded, so nothing is written as if the file were open.
    std::optional<std::string> readVersion();

    // Lays the regions over the image as one undo step (patchImage); false when a
    // region was cut at the image's end.
    bool patch(const std::vector<Region>& regions);
    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }
    // True when bytes of the image changed.
    bool undo();
    bool redo();

    // Writes the image over its "asf" phone file (Saveaxf); then nothing is unsaved.
    void save();
    // Every change of a "bin" image was written as a patch: nothing is left unwritten,
    // though the bytes still differ from the phone file, which is never changed.
    void patchWritten();

    // The image differs from its phone file as last opened or saved.
    bool modified() const { return !m_history.isClean(); }
    // Changes that replacing the image would lose unless saved (an "asf" image) or
    // written as a patch (a "bin" image).
    bool unwrittenChanges() const { return modified(); }
    // The guard of every replacement: the caller asks the user first when false.
    bool mayReplaceWithoutAsking() const { return !unwrittenChanges(); }

    // The phone file's bytes wherever the image has been written since it was opened or
    // saved: what differs from the file, and the patch of every change.
    const OriginalBytes& originals() const { return m_originals; }

    // True when `path` names the phone file itself, under any name or link.
    bool isPhoneFile(const std::string& path) const;
    // Throws FileError (IsOpenPhoneFile) when `path` names the phone file: no output
    // is ever written over it.
    void refuseAsOutput(const std::string& path) const;

private:
    void rememberOriginals(const UndoStep* step);

    ImageState m_state;
    UndoHistory m_history;
    OriginalBytes m_originals;
    std::optional<FileIdentity> m_identity;
};

}  // namespace zevran::image
