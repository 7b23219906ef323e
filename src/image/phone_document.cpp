#include "phone_document.hpp"

#include "file_io.hpp"
#include "phone_file.hpp"

#include <sys/stat.h>

namespace zevran::image {

std::optional<FileIdentity> identityOf(const std::string& path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{static_cast<std::uintmax_t>(status.st_dev), static_cast<std::uintmax_t>(status.st_ino)};
}

void PhoneDocument::open(const std::string& path)
{
    try {
        loadPhoneFile(m_state, path);
    } catch (const EmptyPhoneFile&) {
        m_state.FirmwarePath = path;
        m_identity = identityOf(path);
        throw;
    }
    m_identity = identityOf(path);
    m_history.reset();
    m_originals.reset();
}

std::optional<std::string> PhoneDocument::readVersion()
{
    try {
        return findVersionText(m_state);
    } catch (const VersionOutOfImage&) {
        m_state.FileKind = "other";
        m_state.ImageLoaded = false;
        throw;
    }
}

bool PhoneDocument::patch(const std::vector<Region>& regions)
{
    m_originals.remember(m_state.FirmwareImage, regions);
    m_history.record(stepForRegions(m_state.FirmwareImage, regions));
    return patchImage(m_state, regions);
}

void PhoneDocument::rememberOriginals(const UndoStep* step)
{
    // Undoing past a save writes too: the saved file's bytes there are kept first.
    if (!step) return;
    for (const UndoChange& change : step->changes)
        m_originals.remember(m_state.FirmwareImage, change.first, change.after.size());
}

bool PhoneDocument::undo()
{
    rememberOriginals(m_history.stepToUndo());
    return m_history.undo(m_state.FirmwareImage);
}

bool PhoneDocument::redo()
{
    rememberOriginals(m_history.stepToRedo());
    return m_history.redo(m_state.FirmwareImage);
}

void PhoneDocument::save()
{
    Saveaxf(m_state);
    // The save renamed a new file over the old one.
    m_identity = identityOf(m_state.FirmwarePath);
    m_history.markClean();
    m_originals.reset();
}

void PhoneDocument::patchWritten() { m_history.markClean(); }

void PhoneDocument::refuseAsOutput(const std::string& path) const
{
    if (isPhoneFile(path)) throw FileError(Reason::IsOpenPhoneFile, {path});
}

bool PhoneDocument::isPhoneFile(const std::string& path) const
{
    if (m_state.FirmwarePath.empty()) return false;
    const std::optional<FileIdentity> identity = identityOf(path);
    return identity && (identity == identityOf(m_state.FirmwarePath) || identity == m_identity);
}

}  // namespace zevran::image
