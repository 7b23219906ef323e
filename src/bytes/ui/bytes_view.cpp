#include "bytes_view.hpp"

#include "image/hex_text.hpp"
#include "strings/code_page.hpp"

#include <QFontDatabase>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>

namespace zevran::bytes {

namespace {

constexpr int kAddressDigits = 8;
constexpr char kHexDigits[] = "0123456789ABCDEF";

}  // namespace

BytesView::BytesView(QWidget* parent) : QAbstractScrollArea(parent)
{
    setObjectName("BytesView");
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    setFont(font);
    viewport()->setFont(font);
    viewport()->setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    const QFontMetrics metrics(font);
    m_charWidth = std::max(1, metrics.horizontalAdvance(QLatin1Char('0')));
    m_lineHeight = metrics.height() + 2;
    setEncoding(TextEncoding::SingleByte, std::string(strings::kDefaultCodePage));
    // Whole rows fit without scrolling sideways.
    setMinimumWidth(textX(kRowBytes) + 2 * m_charWidth + verticalScrollBar()->sizeHint().width() + 2 * frameWidth());
    updateScrollBar();
}

void BytesView::setImage(const std::vector<std::uint8_t>* image)
{
    m_image = image;
    m_pendingHigh.reset();  // typed on bytes that are gone
    const std::size_t size = bytes().size();
    if (m_cursor >= size) m_cursor = m_anchor = m_selectionFirst = m_selectionEnd = 0;
    m_selectionEnd = std::min(m_selectionEnd, size);
    m_selectionFirst = std::min(m_selectionFirst, m_selectionEnd);
    updateScrollBar();
    viewport()->update();
}

void BytesView::setEncoding(TextEncoding encoding, const std::string& codePage)
{
    if (codePage != m_characters.codePage()) m_characters = CodePageText(codePage);
    m_encoding = encoding;
    m_codePage = codePage;
    viewport()->update();
}

QColor BytesView::ownerColour(image::OwnerKind kind)
{
    switch (kind) {
    case image::OwnerKind::EditRow: return QColor(255, 224, 140);
    case image::OwnerKind::PictureFrame: return QColor(190, 235, 190);
    case image::OwnerKind::Tone: return QColor(190, 214, 250);
    }
    return {};
}

QColor BytesView::changedColour() { return QColor(250, 165, 165); }

std::size_t BytesView::firstRowShown() const { return static_cast<std::size_t>(verticalScrollBar()->value()); }

std::size_t BytesView::rowsShown() const
{
    return static_cast<std::size_t>(std::max(1, viewport()->height() / m_lineHeight));
}

int BytesView::hexX(std::size_t column) const
{
    // A space more between the two halves of a row.
    return m_charWidth * (kAddressDigits + 2 + 3 * static_cast<int>(column) + (column >= 8 ? 1 : 0));
}

int BytesView::textX(std::size_t column) const
{
    return hexX(kRowBytes) + m_charWidth * (2 + static_cast<int>(column));
}

void BytesView::updateScrollBar()
{
    const std::size_t rows = (bytes().size() + kRowBytes - 1) / kRowBytes;
    const std::size_t shown = rowsShown();
    // 2^31 rows of 16 bytes would be 32 GiB: an image is below 2 GiB, so an int holds any row.
    verticalScrollBar()->setRange(0, static_cast<int>(rows > shown ? rows - shown : 0));
    verticalScrollBar()->setPageStep(static_cast<int>(shown));
    verticalScrollBar()->setSingleStep(1);
    horizontalScrollBar()->setRange(0, std::max(0, textX(kRowBytes) + m_charWidth - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
}

void BytesView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBar();
}

QColor BytesView::fillOf(std::size_t address) const
{
    if (address >= bytes().size()) return {};
    if (address >= m_selectionFirst && address < m_selectionEnd) return palette().color(QPalette::Highlight);
    if (m_originals && m_originals->changedAt(bytes(), address)) return changedColour();
    if (m_owners)
        if (const auto kind = m_owners->kindAt(static_cast<std::int64_t>(address))) return ownerColour(*kind);
    return {};
}

void BytesView::paintText(QPainter& painter, std::span<const std::uint8_t> row, int baseline)
{
    if (m_encoding == TextEncoding::HandsetCodes) {
        // Handset codes are pairs from even addresses; each character stands over its two bytes.
        for (std::size_t i = 0; i + 1 < row.size(); i += 2) {
            const char16_t unit = handsetCharacter(row[i], row[i + 1]);
            painter.drawText(textX(i), baseline, unit ? QString(QChar(unit)) : QStringLiteral(".."));
        }
        return;
    }
    QString text(static_cast<qsizetype>(row.size()), QLatin1Char(' '));
    bool narrow = true;
    for (std::size_t i = 0; i < row.size();) {
        const CodePageText::Character character = m_characters.at(row, i);
        text[static_cast<qsizetype>(i)] = character.unit ? QChar(character.unit) : QLatin1Char('.');
        narrow = narrow && character.unit < 0x80;
        i += static_cast<std::size_t>(character.bytes);
    }
    if (narrow) {
        painter.drawText(textX(0), baseline, text);
        return;
    }
    // A wide character is not one cell wide: each character is placed over its first byte.
    for (std::size_t i = 0; i < row.size(); ++i)
        if (text[static_cast<qsizetype>(i)] != QLatin1Char(' '))
            painter.drawText(textX(i), baseline, QString(text[static_cast<qsizetype>(i)]));
}

void BytesView::paintRow(QPainter& painter, std::size_t row, int y)
{
    const std::span<const std::uint8_t> image = bytes();
    const std::size_t address = row * kRowBytes;
    const std::size_t count = std::min(kRowBytes, image.size() - address);
    const int baseline = y + painter.fontMetrics().ascent() + 1;
    for (std::size_t i = 0; i < count; ++i) {
        const QColor fill = fillOf(address + i);
        if (fill.isValid()) {
            painter.fillRect(cellRect(address + i, false), fill);
            painter.fillRect(cellRect(address + i, true), fill);
        }
    }
    const QColor text = palette().color(QPalette::Text);
    if (address <= m_cursor && m_cursor < address + count) {
        // The cursor is a box in the column that types, and a line under the other.
        const QRect active = cellRect(m_cursor, m_textColumn);
        const QRect other = cellRect(m_cursor, !m_textColumn);
        painter.setPen(hasFocus() ? text : palette().color(QPalette::Mid));
        painter.drawRect(active.adjusted(0, 0, -1, -1));
        painter.drawLine(other.bottomLeft(), other.bottomRight());
    }
    painter.setPen(text);
    char addressText[kAddressDigits];
    for (int d = 0; d < kAddressDigits; ++d)
        addressText[d] = kHexDigits[(address >> (4 * (kAddressDigits - 1 - d))) & 0xF];
    painter.drawText(m_charWidth, baseline, QString::fromLatin1(addressText, kAddressDigits));
    char hex[3 * kRowBytes + 1];
    char* at = hex;
    for (std::size_t i = 0; i < count; ++i) {
        if (i == 8) *at++ = ' ';
        const bool pending = m_pendingHigh && address + i == m_cursor;
        *at++ = kHexDigits[pending ? *m_pendingHigh : image[address + i] >> 4];
        *at++ = kHexDigits[image[address + i] & 0xF];
        *at++ = ' ';
    }
    painter.drawText(hexX(0), baseline, QString::fromLatin1(hex, at - hex));
    paintText(painter, image.subspan(address, count), baseline);
}

void BytesView::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    painter.translate(-horizontalScrollBar()->value(), 0);
    if (bytes().empty()) return;
    const std::size_t rows = (bytes().size() + kRowBytes - 1) / kRowBytes;
    const std::size_t first = firstRowShown();
    const std::size_t last = std::min(rows, first + rowsShown() + 1);
    for (std::size_t row = first; row < last; ++row)
        paintRow(painter, row, static_cast<int>(row - first) * m_lineHeight);
}

QRect BytesView::cellRect(std::size_t address, bool textColumn) const
{
    const std::size_t column = address % kRowBytes;
    const auto row = static_cast<std::int64_t>(address / kRowBytes) - static_cast<std::int64_t>(firstRowShown());
    const int y = static_cast<int>(row * m_lineHeight);
    const int x = (textColumn ? textX(column) : hexX(column)) - horizontalScrollBar()->value();
    return QRect(x, y, textColumn ? m_charWidth : 2 * m_charWidth, m_lineHeight);
}

std::optional<std::size_t> BytesView::addressAt(QPoint point, bool* inTextColumn) const
{
    const int x = point.x() + horizontalScrollBar()->value();
    if (point.y() < 0) return std::nullopt;
    const std::size_t row = firstRowShown() + static_cast<std::size_t>(point.y() / m_lineHeight);
    std::optional<std::size_t> column;
    bool text = false;
    for (std::size_t i = 0; i < kRowBytes && !column; ++i) {
        if (x >= hexX(i) && x < hexX(i) + 3 * m_charWidth) column = i;
        else if (x >= textX(i) && x < textX(i) + m_charWidth) column = i, text = true;
    }
    if (!column) return std::nullopt;
    const std::size_t address = row * kRowBytes + *column;
    if (address >= bytes().size()) return std::nullopt;
    if (inTextColumn) *inTextColumn = text;
    return address;
}

QString BytesView::toolTipAt(QPoint point) const
{
    const auto address = addressAt(point);
    if (!address || !m_ownerNames) return {};
    return m_ownerNames(*address);
}

bool BytesView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString text = toolTipAt(help->pos());
        if (text.isEmpty()) QToolTip::hideText();
        else QToolTip::showText(help->globalPos(), text, viewport());
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

bool BytesView::event(QEvent* event)
{
    // Tab moves between the hex and the text column instead of to the next control.
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            setTextColumnActive(!m_textColumn);
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void BytesView::setCursor(std::size_t address)
{
    if (bytes().empty()) return;
    commitPendingDigit();
    m_cursor = m_anchor = std::min(address, bytes().size() - 1);
    m_selectionFirst = m_selectionEnd = m_cursor;
    scrollToCursor();
    emit cursorMoved(m_cursor);
}

void BytesView::select(std::size_t first, std::size_t end)
{
    setCursor(first);
    m_selectionFirst = m_cursor;
    m_selectionEnd = std::clamp(end, m_cursor, bytes().size());
    viewport()->update();
}

void BytesView::scrollToCursor()
{
    const std::size_t row = m_cursor / kRowBytes;
    const std::size_t first = firstRowShown();
    const std::size_t shown = rowsShown();
    if (row < first) verticalScrollBar()->setValue(static_cast<int>(row));
    else if (row >= first + shown) verticalScrollBar()->setValue(static_cast<int>(row - shown + 1));
    viewport()->update();
}

void BytesView::moveCursor(std::int64_t step, bool extend)
{
    if (bytes().empty()) return;
    const auto last = static_cast<std::int64_t>(bytes().size() - 1);
    const std::int64_t target = std::clamp(static_cast<std::int64_t>(m_cursor) + step, std::int64_t{0}, last);
    if (extend) extendTo(static_cast<std::size_t>(target));
    else setCursor(static_cast<std::size_t>(target));
}

void BytesView::extendTo(std::size_t address)
{
    const std::size_t anchor = m_anchor;
    setCursor(address);
    m_anchor = anchor;
    m_selectionFirst = std::min(m_anchor, m_cursor);
    m_selectionEnd = std::max(m_anchor, m_cursor) + 1;
    viewport()->update();
}

void BytesView::keyPressEvent(QKeyEvent* event)
{
    const bool extend = event->modifiers() & Qt::ShiftModifier;
    const bool control = event->modifiers() & Qt::ControlModifier;
    const auto row = static_cast<std::int64_t>(kRowBytes);
    const auto page = row * static_cast<std::int64_t>(rowsShown());
    const auto column = static_cast<std::int64_t>(m_cursor % kRowBytes);
    switch (event->key()) {
    case Qt::Key_Left: moveCursor(-1, extend); return;
    case Qt::Key_Right: moveCursor(1, extend); return;
    case Qt::Key_Up: moveCursor(-row, extend); return;
    case Qt::Key_Down: moveCursor(row, extend); return;
    case Qt::Key_PageUp: moveCursor(-page, extend); return;
    case Qt::Key_PageDown: moveCursor(page, extend); return;
    case Qt::Key_Home: moveCursor(control ? -static_cast<std::int64_t>(m_cursor) : -column, extend); return;
    case Qt::Key_End:
        moveCursor(control ? static_cast<std::int64_t>(bytes().size()) : row - 1 - column, extend);
        return;
    default: break;
    }
    const QString text = event->text();
    if (!m_editable || bytes().empty() || text.isEmpty() || control || !text.at(0).isPrint()) {
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    if (m_textColumn) typeText(text);
    else if (const int digit = image::hexDigitOrMinusOne(text.at(0).toLatin1()); digit >= 0) typeHexDigit(digit);
}

void BytesView::typeHexDigit(int digit)
{
    if (m_cursor >= bytes().size()) return;
    if (!m_pendingHigh) {
        m_pendingHigh = digit;
        viewport()->update();
        return;
    }
    const auto byte = static_cast<std::uint8_t>(*m_pendingHigh << 4 | digit);
    const std::size_t address = m_cursor;
    m_pendingHigh.reset();
    emit overwriteRequested(address, {byte});
    if (address + 1 < bytes().size()) setCursor(address + 1);
    else viewport()->update();
}

void BytesView::commitPendingDigit()
{
    if (!m_pendingHigh) return;
    const int high = *m_pendingHigh;
    m_pendingHigh.reset();
    if (m_cursor >= bytes().size()) return;
    // A lone digit replaces the high half and keeps the low one.
    emit overwriteRequested(m_cursor, {static_cast<std::uint8_t>(high << 4 | (bytes()[m_cursor] & 0x0F))});
}

void BytesView::setTextColumnActive(bool text)
{
    commitPendingDigit();
    m_textColumn = text;
    viewport()->update();
}

void BytesView::focusOutEvent(QFocusEvent* event)
{
    commitPendingDigit();
    QAbstractScrollArea::focusOutEvent(event);
}

void BytesView::typeText(const QString& text)
{
    const auto typed = patternBytes(
        text.toStdString(),
        m_encoding == TextEncoding::SingleByte ? PatternKind::SingleByte : PatternKind::HandsetCodes, m_codePage);
    // A character the code page cannot hold types nothing.
    if (!typed || m_cursor >= bytes().size()) return;
    const std::size_t address = m_cursor;
    emit overwriteRequested(address, *typed);
    setCursor(std::min(address + typed->size(), bytes().size() - 1));
}

void BytesView::mousePressEvent(QMouseEvent* event)
{
    bool text = false;
    const auto address = addressAt(event->position().toPoint(), &text);
    if (!address || event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    m_textColumn = text;
    if (event->modifiers() & Qt::ShiftModifier) {
        extendTo(*address);
    } else {
        setCursor(*address);
    }
}

void BytesView::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton)) return;
    const auto address = addressAt(event->position().toPoint());
    if (!address || *address == m_cursor) return;
    extendTo(*address);
}

}  // namespace zevran::bytes
