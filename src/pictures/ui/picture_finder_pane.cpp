#include "picture_finder_pane.hpp"

#include "image/hex_text.hpp"
#include "window/tab_host.hpp"
#include "pictures/picture_player.hpp"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace zevran::pictures {

namespace {

constexpr std::array<FinderMove, 5> kMoves = {FinderMove::Byte, FinderMove::Pixel, FinderMove::Row, FinderMove::Frame,
                                              FinderMove::Page};
constexpr std::array<std::string_view, 5> kMoveKeys = {"FinderByte", "FinderPixel", "FinderRow", "FinderFrame",
                                                       "FinderPage"};
constexpr std::array<int, 6> kDepths = {1, 4, 8, 12, 16, 24};

QString hexAddress(std::int64_t address)
{
    return QString::fromStdString(image::HexPad(static_cast<std::uint32_t>(address), 8));
}

}  // namespace

// --- the view ---

FinderCanvas::FinderCanvas(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(128, 128);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void FinderCanvas::setPicture(QImage picture, int zoom)
{
    m_picture = std::move(picture);
    m_zoom = std::max(1, zoom);
    update();
}

void FinderCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // No-data pixels are transparent and let this hatching through.
    painter.fillRect(rect(), QColor(96, 96, 96));
    painter.fillRect(rect(), QBrush(QColor(160, 160, 160), Qt::BDiagPattern));
    painter.drawImage(QRect(0, 0, m_picture.width() * m_zoom, m_picture.height() * m_zoom), m_picture);
}

QPoint FinderCanvas::pixelAt(const QPointF& position) const
{
    const int x = static_cast<int>(position.x()) / m_zoom;
    const int y = static_cast<int>(position.y()) / m_zoom;
    if (position.x() < 0 || position.y() < 0 || x >= m_picture.width() || y >= m_picture.height()) return {-1, -1};
    return {x, y};
}

void FinderCanvas::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pixel = pixelAt(event->position());
    emit pointerAt(pixel.x(), pixel.y());
}

void FinderCanvas::mousePressEvent(QMouseEvent* event)
{
    setFocus();
    const QPoint pixel = pixelAt(event->position());
    if (event->button() == Qt::LeftButton && pixel.x() >= 0) emit clickedAt(pixel.x(), pixel.y());
}

void FinderCanvas::leaveEvent(QEvent*) { emit pointerAt(-1, -1); }

void FinderCanvas::resizeEvent(QResizeEvent*) { emit resized(); }

// Left and right a pixel (with Ctrl a byte), up and down a row (with Ctrl a frame),
// Page Up and Page Down a page.
void FinderCanvas::keyPressEvent(QKeyEvent* event)
{
    const bool control = event->modifiers() & Qt::ControlModifier;
    switch (event->key()) {
    case Qt::Key_Left: emit moveKey(control ? FinderMove::Byte : FinderMove::Pixel, -1); break;
    case Qt::Key_Right: emit moveKey(control ? FinderMove::Byte : FinderMove::Pixel, 1); break;
    case Qt::Key_Up: emit moveKey(control ? FinderMove::Frame : FinderMove::Row, -1); break;
    case Qt::Key_Down: emit moveKey(control ? FinderMove::Frame : FinderMove::Row, 1); break;
    case Qt::Key_PageUp: emit moveKey(FinderMove::Page, -1); break;
    case Qt::Key_PageDown: emit moveKey(FinderMove::Page, 1); break;
    default: QWidget::keyPressEvent(event); return;
    }
    event->accept();
}

// --- the window ---

PictureFinderPane::PictureFinderPane(window::TabHost& host, QWidget* parent) : QDialog(parent), m_host(host)
{
    setObjectName("PictureFinder");
    buildControls();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(labelledFields());
    layout->addLayout(moveButtons());
    auto* side = new QVBoxLayout;
    for (QWidget* control : std::initializer_list<QWidget*>{guessButton, nextWidths, nameEdit, addButton, scanButton})
        side->addWidget(control);
    auto* middle = new QHBoxLayout;
    middle->addWidget(canvas, 1);
    middle->addLayout(side);
    layout->addLayout(middle, 1);
    layout->addWidget(statusLine);
    connectControls();
    // Return belongs to the address field: no button is the dialog's default.
    for (QPushButton* button : findChildren<QPushButton*>()) button->setAutoDefault(false);
    resize(900, 700);
    retranslate();
    redraw();
}

void PictureFinderPane::buildControls()
{
    addressEdit = new QLineEdit(this);
    addressEdit->setObjectName("FinderAddressEdit");
    depthBox = new QComboBox(this);
    for (int d : kDepths) depthBox->addItem(QString::number(d), d);
    depthBox->setCurrentIndex(4);  // 16 bits
    auto spin = [this](int least, int most, int value) {
        auto* box = new QSpinBox(this);
        box->setRange(least, most);
        box->setValue(value);
        return box;
    };
    widthBox = spin(1, kWidestGuess, 128);
    heightBox = spin(1, 4096, 160);
    framesBox = spin(1, 32767, 1);
    zoomBox = spin(1, 16, 2);
    canvas = new FinderCanvas(this);
    guessButton = new QPushButton(this);
    nextWidths = new QListWidget(this);
    nextWidths->setMaximumWidth(160);
    nameEdit = new QLineEdit(this);
    addButton = new QPushButton(this);
    scanButton = new QPushButton(this);
    scanButton->setObjectName("FinderScanPictures");
    statusLine = new QLabel(this);
    statusLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

// Each field with its label, whose text key the language gives.
QHBoxLayout* PictureFinderPane::labelledFields()
{
    auto* fields = new QHBoxLayout;
    const std::array<std::pair<std::string_view, QWidget*>, 6> labelled = {{{"FinderAddress", addressEdit},
                                                                            {"FinderDepth", depthBox},
                                                                            {"FinderWidth", widthBox},
                                                                            {"FinderHeight", heightBox},
                                                                            {"FinderFrames", framesBox},
                                                                            {"FinderZoom", zoomBox}}};
    for (const auto& [key, field] : labelled) {
        auto* label = new QLabel(this);
        label->setProperty("textKey", QString::fromUtf8(key.data(), static_cast<int>(key.size())));
        label->setBuddy(field);
        fields->addWidget(label);
        fields->addWidget(field);
    }
    fields->addStretch();
    return fields;
}

// The back and forward buttons of each step the view moves by, repeating while held.
QHBoxLayout* PictureFinderPane::moveButtons()
{
    auto* moves = new QHBoxLayout;
    for (std::size_t i = 0; i < kMoves.size(); ++i) {
        backButtons[i] = new QPushButton(this);
        forwardButtons[i] = new QPushButton(this);
        backButtons[i]->setAutoRepeat(true);
        forwardButtons[i]->setAutoRepeat(true);
        const FinderMove move = kMoves[i];
        connect(backButtons[i], &QPushButton::clicked, this, [this, move] { moveBy(move, -1); });
        connect(forwardButtons[i], &QPushButton::clicked, this, [this, move] { moveBy(move, 1); });
        moves->addWidget(backButtons[i]);
        moves->addWidget(forwardButtons[i]);
    }
    moves->addStretch();
    return moves;
}

void PictureFinderPane::connectControls()
{
    // Return applies a typed address. (Not a focus change: that comes also while the
    // window is being torn down.)
    connect(addressEdit, &QLineEdit::returnPressed, this, &PictureFinderPane::readAddress);
    connect(depthBox, &QComboBox::currentIndexChanged, this, [this] {
        widthBox->setEnabled(depth() != 1);
        heightBox->setEnabled(depth() != 1);
        redraw();
    });
    for (QSpinBox* box : {widthBox, zoomBox}) connect(box, &QSpinBox::valueChanged, this, &PictureFinderPane::redraw);
    connect(canvas, &FinderCanvas::resized, this, &PictureFinderPane::redraw);
    connect(canvas, &FinderCanvas::pointerAt, this, &PictureFinderPane::showPointer);
    connect(canvas, &FinderCanvas::clickedAt, this, [this](int x, int y) {
        const std::int64_t at = pixelAddress(view(), x, y);
        if (at >= 0) setAddress(at);
    });
    connect(canvas, &FinderCanvas::moveKey, this, &PictureFinderPane::moveBy);
    connect(guessButton, &QPushButton::clicked, this, &PictureFinderPane::guessWidth);
    connect(nextWidths, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { widthBox->setValue(item->data(Qt::UserRole).toInt()); });
    connect(addButton, &QPushButton::clicked, this, &PictureFinderPane::addToTable);
    connect(scanButton, &QPushButton::clicked, this, &PictureFinderPane::scanRequested);
}

// Children outlive this part of the window: none may call back into it now.
PictureFinderPane::~PictureFinderPane()
{
    for (QObject* child : findChildren<QObject*>()) disconnect(child, nullptr, this, nullptr);
}

QString PictureFinderPane::text(std::string_view key) const { return m_host.text(key); }

void PictureFinderPane::retranslate()
{
    setWindowTitle(text("FinderTitle"));
    for (QLabel* label : findChildren<QLabel*>())
        if (const QVariant key = label->property("textKey"); key.isValid())
            label->setText(text(key.toString().toStdString()));
    for (std::size_t i = 0; i < kMoves.size(); ++i) {
        backButtons[i]->setText("< " + text(kMoveKeys[i]));
        forwardButtons[i]->setText(text(kMoveKeys[i]) + " >");
    }
    guessButton->setText(text("FinderGuessWidth"));
    nameEdit->setPlaceholderText(text("FinderName"));
    addButton->setText(text("FinderAddToTable"));
    scanButton->setText(text("ScanPictures"));
}

int PictureFinderPane::depth() const { return depthBox->currentData().toInt(); }

ViewGeometry PictureFinderPane::view() const
{
    const int zoom = zoomBox->value();
    if (depth() == 1) return {m_address, 1, kMonoViewWidth, kMonoViewHeight};
    return {m_address, depth(), widthBox->value(), std::max(1, canvas->height() / zoom)};
}

FoundPicture PictureFinderPane::pictureOnShow() const
{
    // The display memory is listed as 64*96: one BMP row a display column.
    if (depth() == 1) return {m_address, framesBox->value(), kMonoViewWidth, kMonoViewHeight, 1};
    return {m_address, framesBox->value(), widthBox->value(), heightBox->value(), depth()};
}

void PictureFinderPane::showPicture(const FoundPicture& picture)
{
    const QSignalBlocker blockDepth(depthBox), blockWidth(widthBox);
    if (const int index = depthBox->findData(picture.depth); index >= 0) depthBox->setCurrentIndex(index);
    widthBox->setEnabled(depth() != 1);
    heightBox->setEnabled(depth() != 1);
    widthBox->setValue(std::clamp<std::int32_t>(picture.width, 1, kWidestGuess));
    heightBox->setValue(std::clamp<std::int32_t>(picture.height, 1, heightBox->maximum()));
    framesBox->setValue(static_cast<int>(std::clamp<std::int64_t>(picture.frames, 1, framesBox->maximum())));
    retranslate();
    setAddress(picture.address);
}

void PictureFinderPane::setAddress(std::int64_t address)
{
    const auto last =
        std::max<std::int64_t>(0, static_cast<std::int64_t>(m_host.imageState().FirmwareImage.size()) - 1);
    m_address = std::clamp<std::int64_t>(address, 0, last);
    redraw();
}

void PictureFinderPane::readAddress()
{
    QString typed = addressEdit->text().trimmed();
    if (typed.startsWith("0x", Qt::CaseInsensitive)) typed = typed.mid(2);
    bool number = !typed.isEmpty() && typed.size() <= 8;
    const std::int64_t value = number ? static_cast<std::int64_t>(typed.toUInt(&number, 16)) : 0;
    if (!number) {
        showStatus(text("FinderBadAddress") + " " + addressEdit->text());
        addressEdit->setText(hexAddress(m_address));
        return;
    }
    setAddress(value);
}

void PictureFinderPane::moveBy(FinderMove move, int direction)
{
    setAddress(m_address + direction * moveBytes(move, view(), heightBox->value()));
}

void PictureFinderPane::redraw()
{
    const ViewGeometry geometry = view();
    const std::string colourTable = m_host.dataFolder().toStdString() + "/16.dat";
    m_renderer.render(m_host.imageState().FirmwareImage, geometry, coloursForDepth(geometry.depth, colourTable));
    // The image shares the renderer's pixels: it is replaced before they change.
    const QImage picture(reinterpret_cast<const uchar*>(m_renderer.pixels().data()), m_renderer.width(),
                         m_renderer.height(), qsizetype{m_renderer.width()} * 4, QImage::Format_ARGB32);
    canvas->setPicture(picture, zoomBox->value());
    if (!addressEdit->hasFocus()) addressEdit->setText(hexAddress(m_address));
}

void PictureFinderPane::showStatus(const QString& message)
{
    statusLine->setText(message);
    m_pointerShown = false;
}

void PictureFinderPane::showPointer(int x, int y)
{
    // Off the pixels, a pointer address goes; a message stays.
    const std::int64_t at = x < 0 ? -1 : pixelAddress(view(), x, y);
    if (at >= 0) statusLine->setText(text("FinderPointer") + " 0x" + hexAddress(at));
    else if (m_pointerShown) statusLine->clear();
    m_pointerShown = at >= 0;
}

void PictureFinderPane::guessWidth()
{
    nextWidths->clear();
    if (depth() == 1) {
        showStatus(text("FinderMonoHasNoWidth"));
        return;
    }
    std::vector<WidthScore> scores;
    try {
        const std::string colourTable = m_host.dataFolder().toStdString() + "/16.dat";
        scores = guessWidths(m_host.imageState().FirmwareImage, m_address, depth(), kLeastGuessWidth, kMostGuessWidth,
                             coloursForDepth(depth(), colourTable));
    } catch (const std::exception&) {
        showStatus(text("FinderNoWidth"));
        return;
    }
    for (std::size_t i = 1; i < scores.size() && i < 5; ++i) {
        auto* item = new QListWidgetItem(QString("%1   %2").arg(scores[i].width).arg(scores[i].score, 0, 'f', 3));
        item->setData(Qt::UserRole, scores[i].width);
        nextWidths->addItem(item);
    }
    widthBox->setValue(scores.front().width);
    showStatus(text("FinderGuessed") + " " + QString::number(scores.front().width));
}

void PictureFinderPane::addToTable()
{
    const QString name = nameEdit->text();
    if (!pictureNameAllowed(name.toStdString())) {
        showStatus(text("FinderBadName"));
        nameEdit->setFocus();
        return;
    }
    emit addToTableRequested(pictureOnShow(), name);
    showStatus(text("FinderAdded") + " " + name);
}

}  // namespace zevran::pictures
