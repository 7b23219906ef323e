// The picture tab's gallery: "Scan for pictures" (on the tab and in the finder) scans
// the whole image; a double-click opens the finder on a candidate, and the chosen
// ones are added as the finder adds a picture.
#include "picture_finder_pane.hpp"
#include "picture_gallery.hpp"
#include "pictures_tab.hpp"

namespace zevran::pictures {

void PicturesTab::ScanPictures_Click()
{
    if (!m_gallery) {
        m_gallery = new PictureGallery(*m_host, this);
        m_gallery->setWindowFlag(Qt::Window);
        connect(m_gallery, &PictureGallery::openInFinder, this,
                [this](const FoundPicture& picture) { openFinder()->showPicture(picture); });
        connect(m_gallery, &PictureGallery::addToTableRequested, this, &PicturesTab::addFoundPicture);
    }
    m_gallery->retranslate();
    m_gallery->show();
    m_gallery->raise();
    m_gallery->activateWindow();
    if (!m_gallery->scanning()) m_gallery->startScan(pictureRows());
}

}  // namespace zevran::pictures
