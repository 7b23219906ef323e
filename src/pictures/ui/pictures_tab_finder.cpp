// The picture tab's finder: "Find pictures" and "Show in finder" open it, and a
// picture found there becomes a row of the list.
#include "picture_finder_pane.hpp"
#include "pictures_tab.hpp"
#include "pictures_tab_cells.hpp"

#include "window/widget_helpers.hpp"

#include <QPushButton>
#include <QTreeView>

namespace zevran::pictures {

using window::fromUtf8;

PictureFinderPane* PicturesTab::openFinder()
{
    if (!m_finder) {
        m_finder = new PictureFinderPane(*m_host, this);
        m_finder->setWindowFlag(Qt::Window);
        connect(m_finder, &PictureFinderPane::addToTableRequested, this, &PicturesTab::addFoundPicture);
        connect(m_finder, &PictureFinderPane::scanRequested, this, &PicturesTab::ScanPictures_Click);
    }
    m_finder->retranslate();
    m_finder->show();
    m_finder->raise();
    m_finder->activateWindow();
    return m_finder;
}

void PicturesTab::FindPictures_Click()
{
    PictureFinderPane* finder = openFinder();
    finder->setAddress(finder->address());  // the image may have changed since
}

void PicturesTab::ShowInFinder_Click()
{
    if (selectedRow() < 0) return;
    const PictureEntry row = selectedEntry();
    try {
        const FrameGeometry geometry = pictures::frameGeometry(row);
        openFinder()->showPicture({geometry.start, geometry.frames, geometry.width, geometry.height, geometry.depth});
    } catch (const std::exception& error) {
        m_host->showError(onRow(*m_host, row, error));
    }
}

void PicturesTab::addFoundPicture(const FoundPicture& picture, const QString& name)
{
    std::vector<PictureEntry> last;
    if (const int count = m_pictureModel->rowCount(); count > 0) last.push_back(m_pictureModel->row(count - 1).entry);
    try {
        appendPictureRows({foundPictureEntry(picture, nextPictureNumber(last), name.toStdString())});
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    for (QPushButton* button : {PlayPicture, nextpicture, PreviousPicture}) button->setEnabled(true);
}

}  // namespace zevran::pictures
