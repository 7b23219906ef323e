// Edit > Undo and Redo over the document's changes, and the signals the window's parts
// follow: the image changed, was replaced, or now differs from its phone file or no
// longer does. The history itself is the document's.
#pragma once

#include "image/patch_writer.hpp"
#include "image/phone_document.hpp"

#include <QObject>
#include <vector>

class QAction;

namespace zevran::app {

class ImageHistory : public QObject {
    Q_OBJECT
public:
    ImageHistory(image::PhoneDocument& document, QObject* parent);

    // Ctrl+Z and Ctrl+Shift+Z; enabled while there is a step to undo or redo.
    QAction* undoAction() const { return m_undo; }
    QAction* redoAction() const { return m_redo; }

    // A phone file was opened into the document: no steps, nothing unsaved.
    void opened();
    // Writes the image over its "asf" phone file (PhoneDocument::save, which throws when
    // it cannot); then nothing is unsaved.
    void save();
    // Every change of a "bin" image was written as a patch: nothing is left unwritten,
    // but the bytes still differ from the phone file, which is never changed.
    void patchWritten();
    // Lays the regions over the image as patchImage does, as one step. Returns
    // patchImage's answer: false when a region was cut at the image's end.
    bool patch(const std::vector<image::Region>& regions);

    void undo();
    void redo();

    bool modified() const { return m_document.modified(); }
    // The changes that closing or opening another file would lose: the may-close
    // question's state.
    bool unwrittenChanges() const { return m_document.unwrittenChanges(); }
    const image::OriginalBytes& originals() const { return m_document.originals(); }

signals:
    // The image now differs from its phone file, or no longer does.
    void modifiedChanged(bool modified);
    // An output, an undo or a redo changed bytes of the image.
    void imageChanged();
    // A phone file's bytes replaced the image.
    void imageReplaced();

private:
    void update();

    image::PhoneDocument& m_document;
    QAction* m_undo;
    QAction* m_redo;
    bool m_modified = false;
};

}  // namespace zevran::app
