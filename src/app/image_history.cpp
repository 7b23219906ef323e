#include "image_history.hpp"

#include <QAction>
#include <QKeySequence>

namespace zevran::app {

ImageHistory::ImageHistory(image::ImageState& image, QObject* parent)
    : QObject(parent), m_image(image), m_undo(new QAction(this)), m_redo(new QAction(this))
{
    m_undo->setObjectName("menuundo");
    m_undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    m_redo->setObjectName("menuredo");
    m_redo->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
    connect(m_undo, &QAction::triggered, this, &ImageHistory::undo);
    connect(m_redo, &QAction::triggered, this, &ImageHistory::redo);
    update();
}

void ImageHistory::opened()
{
    m_history.reset();
    m_originals.reset();
    update();
    emit imageReplaced();
}

void ImageHistory::saved()
{
    m_history.markClean();
    m_originals.reset();
    update();
}

void ImageHistory::patchWritten()
{
    m_history.markClean();
    update();
}

bool ImageHistory::patch(const std::vector<image::Region>& regions)
{
    m_originals.remember(m_image.FirmwareImage, regions);
    m_history.record(image::stepForRegions(m_image.FirmwareImage, regions));
    const bool whole = image::patchImage(m_image, regions);
    update();
    emit imageChanged();
    return whole;
}

void ImageHistory::rememberOriginals(const image::UndoStep* step)
{
    // Undoing past a save writes too: the saved file's bytes there are kept first.
    if (!step) return;
    for (const image::UndoChange& change : step->changes)
        m_originals.remember(m_image.FirmwareImage, change.first, change.after.size());
}

void ImageHistory::undo()
{
    rememberOriginals(m_history.stepToUndo());
    if (m_history.undo(m_image.FirmwareImage)) emit imageChanged();
    update();
}

void ImageHistory::redo()
{
    rememberOriginals(m_history.stepToRedo());
    if (m_history.redo(m_image.FirmwareImage)) emit imageChanged();
    update();
}

void ImageHistory::update()
{
    m_undo->setEnabled(m_history.canUndo());
    m_redo->setEnabled(m_history.canRedo());
    if (modified() == m_modified) return;
    m_modified = modified();
    emit modifiedChanged(m_modified);
}

}  // namespace zevran::app
