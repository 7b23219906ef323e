#include "image_history.hpp"

#include <QAction>
#include <QKeySequence>

namespace zevran::app {

ImageHistory::ImageHistory(image::PhoneDocument& document, QObject* parent)
    : QObject(parent), m_document(document), m_undo(new QAction(this)), m_redo(new QAction(this))
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
    update();
    emit imageReplaced();
}

void ImageHistory::save()
{
    m_document.save();
    update();
}

void ImageHistory::patchWritten()
{
    m_document.patchWritten();
    update();
}

bool ImageHistory::patch(const std::vector<image::Region>& regions)
{
    const bool whole = m_document.patch(regions);
    update();
    emit imageChanged();
    return whole;
}

void ImageHistory::undo()
{
    if (m_document.undo()) emit imageChanged();
    update();
}

void ImageHistory::redo()
{
    if (m_document.redo()) emit imageChanged();
    update();
}

void ImageHistory::update()
{
    m_undo->setEnabled(m_document.canUndo());
    m_redo->setEnabled(m_document.canRedo());
    if (modified() == m_modified) return;
    m_modified = modified();
    emit modifiedChanged(m_modified);
}

}  // namespace zevran::app
