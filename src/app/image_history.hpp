// Edit > Undo and Redo over every change the window makes to the image in memory, and
// the unsaved-changes state that follows from them: the image differs from its phone
// file exactly when the history is away from the step of the last open or save.
#pragma once

#include "image/byte_edits.hpp"
#include "image/firmware_image.hpp"
#include "image/patch_writer.hpp"
#include "image/undo_history.hpp"

#include <QObject>
#include <vector>

class QAction;

namespace zevran::app {

class ImageHistory : public QObject {
    Q_OBJECT
public:
    ImageHistory(image::ImageState& image, QObject* parent);

    // Ctrl+Z and Ctrl+Shift+Z; enabled while there is a step to undo or redo.
    QAction* undoAction() const { return m_undo; }
    QAction* redoAction() const { return m_redo; }

    // A phone file was opened: no steps, nothing unsaved.
    void opened();
    // The image was written over its phone file.
    void saved();
    // Every change of a "bin" image was written as a patch: nothing is left unwritten,
    // but the bytes still differ from the phone file, which is never changed.
    void patchWritten();
    // Lays the regions over the image as patchImage does, as one step. Returns
    // patchImage's answer: false when a region was cut at the image's end.
    bool patch(const std::vector<image::Region>& regions);

    void undo();
    void redo();

    bool modified() const { return !m_history.isClean(); }
    // The changes that closing or opening another file would lose unless saved (an
    // "asf" image) or written as a patch (a "bin" image): the may-close question's state.
    bool unwrittenChanges() const { return modified(); }

    // The phone file's bytes wherever the image has been written since it was opened
    // or saved: what differs from the file, and the patch of every change.
    const image::OriginalBytes& originals() const { return m_originals; }

signals:
    // The image now differs from its phone file, or no longer does.
    void modifiedChanged(bool modified);
    // An output, an undo or a redo changed bytes of the image.
    void imageChanged();
    // A phone file's bytes replaced the image.
    void imageReplaced();

private:
    void update();
    void rememberOriginals(const image::UndoStep* step);

    image::ImageState& m_image;
    image::UndoHistory m_history;
    image::OriginalBytes m_originals;
    QAction* m_undo;
    QAction* m_redo;
    bool m_modified = false;
};

}  // namespace zevran::app
