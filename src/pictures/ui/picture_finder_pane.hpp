// The picture finder window: the image drawn as pixels of a chosen depth and width,
// moved through byte by byte up to page by page, with a width guess and "Add to
// table", which hands the picture found to the picture list.
#pragma once

#include "pictures/picture_finder.hpp"
#include "pictures/picture_view.hpp"

#include <QDialog>
#include <QImage>

#include <array>
#include <string_view>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QSpinBox;

namespace zevran::window {
class TabHost;
}

namespace zevran::pictures {

// The finder's view: the pixels as square blocks of zoom x zoom, no-data pixels as a
// hatched grey. It reports the pixel under the pointer, a click on a pixel and the
// moving keys.
class FinderCanvas : public QWidget {
    Q_OBJECT
public:
    explicit FinderCanvas(QWidget* parent = nullptr);
    void setPicture(QImage picture, int zoom);
    const QImage& picture() const { return m_picture; }
    int zoom() const { return m_zoom; }

signals:
    void pointerAt(int x, int y);  // -1, -1 when the pointer is off the pixels
    void clickedAt(int x, int y);
    void moveKey(zevran::pictures::FinderMove move, int direction);
    void resized();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QPoint pixelAt(const QPointF& position) const;

    QImage m_picture;
    int m_zoom = 1;
};

class PictureFinderPane : public QDialog {
    Q_OBJECT
public:
    explicit PictureFinderPane(window::TabHost& host, QWidget* parent = nullptr);
    ~PictureFinderPane() override;

    // Opens on a picture's place, size and depth ("Show in finder" of a row).
    void showPicture(const FoundPicture& picture);
    // Captions from the current language.
    void retranslate();

    // What the view shows now: its address, depth, width and the rows that fit.
    ViewGeometry view() const;
    std::int64_t address() const { return m_address; }
    void setAddress(std::int64_t address);
    // One move of `move`'s size, forward for direction 1, back for -1; the address
    // stays between 0 and the image's last byte.
    void moveBy(FinderMove move, int direction);
    // The best width applied, the next ones listed.
    void guessWidth();
    // The picture on show handed to the list under the typed name.
    void addToTable();
    void redraw();

    QLineEdit* addressEdit;
    QComboBox* depthBox;
    QSpinBox* widthBox;
    QSpinBox* heightBox;
    QSpinBox* framesBox;
    QSpinBox* zoomBox;
    FinderCanvas* canvas;
    std::array<QPushButton*, 5> backButtons{};  // byte, pixel, row, frame, page
    std::array<QPushButton*, 5> forwardButtons{};
    QPushButton* guessButton;
    QListWidget* nextWidths;  // the runners-up of the last guess; a click applies one
    QLineEdit* nameEdit;
    QPushButton* addButton;
    QPushButton* scanButton;  // the picture scan over the whole image, in the gallery
    QLabel* statusLine;

signals:
    void scanRequested();
    // "Add to table" with a name the table can carry.
    void addToTableRequested(const zevran::pictures::FoundPicture& picture, const QString& name);

private:
    void buildControls();
    QHBoxLayout* labelledFields();
    QHBoxLayout* moveButtons();
    void connectControls();
    QString text(std::string_view key) const;
    void showPointer(int x, int y);
    void showStatus(const QString& message);
    void readAddress();
    int depth() const;
    FoundPicture pictureOnShow() const;

    window::TabHost& m_host;
    ViewRenderer m_renderer;
    std::int64_t m_address = 0;
    bool m_pointerShown = false;  // the status line shows the pointer's address
};

}  // namespace zevran::pictures
