// The picture tab: picture tables, the preview with its player, export and patches.
#pragma once

#include "window/caption_keys.hpp"
#include "pictures/picture_finder.hpp"
#include "pictures/picture_import_job.hpp"
#include "pictures/picture_player.hpp"
#include "pictures/picture_table.hpp"
#include "picture_list_model.hpp"

#include <QImage>
#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QAction;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QSlider;
class QTimer;
class QTreeView;

namespace zevran::window {
class TabHost;
}

namespace zevran::pictures {

class PictureFinderPane;
class PictureGallery;

class PicturesTab : public QWidget {
    Q_OBJECT
public:
    explicit PicturesTab(QWidget* parent = nullptr);
    // The language file's keys that label this tab's controls, in the file's order.
    static std::vector<window::CaptionKey> captionKeys();

    // The window whose image, dialogs, folders and messages the commands use, and the
    // picture list's pop-up menu, which the tab fills with its commands.
    void attach(window::TabHost& host, QMenu* pictureListMenu);

    // Picture tables.
    void OpenPicTable_Click();
    void SavePicTable_Click();

    // The preview and its player.
    // Row `row` was clicked or reached with the keyboard: the chosen row shows from its first frame.
    void ListView5_ItemClick(int row);
    void ListView5_DblClick();
    void nextpicture_Click();
    void PreviousPicture_Click();
    void PlayPicture_Click();
    void PausePlay_Click();
    void StopPlay_Click();
    void Slider1_Change(int value);
    void Timer2_Timer();

    // The pop-up menu: enabled by the list and the file kind, then shown at `position`
    // (in the list's viewport).
    void ListView5_MouseUp(const QPoint& position);
    void enablePictureMenu();
    void outputpic_Click();
    void outputpicall_Click();
    void outputpics3_Click();
    // A user's picture into the chosen row's current frame, or every frame of the row
    // from an export folder: shown before and after, then written as the file's kind
    // wants it (an S-record patch for "bin", into the image for "asf").
    void importpic_Click();
    void importallpic_Click();

    // The player's captions, the speed slider's label and the finder's captions in the
    // current language.
    void applyTexts();

    // The picture finder: opened empty-handed, or on the selected row's place, size
    // and depth; a picture found there becomes a row numbered after the last.
    void FindPictures_Click();
    void ShowInFinder_Click();
    void addFoundPicture(const FoundPicture& picture, const QString& name);
    PictureFinderPane* finder() const { return m_finder; }

    // Undo or redo changed the image's bytes: the frame on show and the finder are drawn
    // again from them.
    void imageBytesChanged();

    // Every row of the list, as the byte view reads their frames.
    std::vector<PictureEntry> pictureRows() const { return entriesOf(m_pictureModel->rows()); }
    // Rows added after the last, unchecked, as a loaded table or the finder adds them.
    void appendPictureRows(const std::vector<PictureEntry>& rows);

    // The picture scan over the whole image, its candidates in the gallery
    // (pictures_tab_gallery.cpp).
    void ScanPictures_Click();
    PictureGallery* gallery() const { return m_gallery; }

    // Shut-down: the animation stops and the paused flag clears.
    void shutDown();

    FrameNumber currentFrame() const { return m_frame; }
    bool paused() const { return m_paused; }
    // The integer factor by which previewPicture shows the frame on show.
    int previewZoom() const { return m_zoom; }

    QTreeView* pictureList;
    QPushButton* OpenPicTable;
    QPushButton* SavePicTable;
    QPushButton* FindPictures;
    QPushButton* ScanPictures;
    QCheckBox* recomputeFrameSizes;  // recompute frame sizes when loading
    QCheckBox* RepeatPlay;
    QLineEdit* saveAddressOffset;  // address offset added when saving
    QLineEdit* frameAddressBox;    // address of the frame on show
    QLineEdit* frameOrdinalBox;    // its ordinal
    QLabel* FrameCount;            // "of M", marked when the frame on show lies past the last
    QLabel* previewPicture;        // the preview
    QPushButton* PreviousPicture;
    QPushButton* nextpicture;
    QPushButton* PlayPicture;
    QPushButton* PausePlay;
    QPushButton* StopPlay;
    QSlider* speedSlider;
    QLabel* SpeedLabel;  // names the slider
    QTimer* Timer2;
    QProgressBar* pictureProgress;
    QMenu* menufile5 = nullptr;
    QAction* outputpic = nullptr;
    QAction* outputpicall = nullptr;
    QAction* outputpics3 = nullptr;
    QAction* ShowInFinder = nullptr;
    QAction* importpic = nullptr;
    QAction* importallpic = nullptr;

signals:
    // The preview's temporary BMP is written and about to be loaded, then deleted.
    void previewFileWritten(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Work;

    std::vector<QWidget*> workControls() const;
    // The rows of the list that `take` accepts (by row number), as the logic sees them, in list order.
    std::vector<PictureEntry> rowsWhere(const std::function<bool(int)>& take) const;
    void stepFrame(int step);
    // The row the commands act on: the current row if selected, else the first selected; -1 for none.
    int selectedRow() const;
    // That row's cells; every cell empty when no row is chosen, so every number reads as 0.
    PictureEntry selectedEntry() const;
    QString showFrame(const std::string& path);
    void showFrameOrError(const std::string& path);
    void loadPreview(const QString& path);
    void scalePreview();
    void stopPlayer();
    void showWrongFormat();
    void showFrameCount(const FrameGeometry& geometry, std::int32_t address);
    std::string colourTablePath() const;
    void exportPictures(bool selectedOnly);
    PictureFinderPane* openFinder();
    QWidget* buildTablePane();
    QGroupBox* buildPreviewPane();
    // The import's steps (pictures_tab_import.cpp).
    std::optional<ImportableRow> importableRow();
    void importFrames(const ImportableRow& row, const std::vector<FramePicture>& pictures);
    bool confirmImport(const ImportableRow& row, const std::vector<FramePicture>& pictures,
                       const RowImportResult& result);
    void showImportStop(const PictureEntry& row, const RowImportError& error);
    QString importText(const char* key) const;

    window::TabHost* m_host = nullptr;
    PictureListModel* m_pictureModel = nullptr;
    QGroupBox* m_frame16 = nullptr;
    FrameNumber m_frame = 0;
    bool m_paused = false;
    bool m_inTick = false;
    bool m_working = false;
    QImage m_preview;
    int m_zoom = 1;
    PictureFinderPane* m_finder = nullptr;
    PictureGallery* m_gallery = nullptr;
};

}  // namespace zevran::pictures
