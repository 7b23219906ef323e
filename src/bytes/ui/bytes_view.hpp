// The image as rows of 16 bytes: the address, the bytes in hex and the bytes as text.
// Only the rows on screen are painted, straight from the image's bytes; nothing is
// copied, so a 256 MiB image scrolls as fast as a small one. Each byte is coloured by
// what owns it; typing in either column asks for bytes to be overwritten, never
// inserted or removed.
#pragma once

#include "bytes/byte_text.hpp"
#include "image/byte_edits.hpp"
#include "image/byte_owners.hpp"

#include <QAbstractScrollArea>
#include <QColor>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zevran::bytes {

class BytesView : public QAbstractScrollArea {
    Q_OBJECT
public:
    static constexpr std::size_t kRowBytes = 16;

    explicit BytesView(QWidget* parent = nullptr);

    // The bytes shown, read where they lie at each repaint: the image may be replaced
    // or grow and shrink between two calls without the view holding stale bytes.
    void setImage(const std::vector<std::uint8_t>* image);
    // What owns the bytes and the file's bytes under the edits; either may be null.
    void setOwners(const image::ByteOwners* owners)
    {
        m_owners = owners;
        viewport()->update();
    }
    void setOriginals(const image::OriginalBytes* originals)
    {
        m_originals = originals;
        viewport()->update();
    }
    void setEncoding(TextEncoding encoding, const std::string& codePage);
    TextEncoding encoding() const { return m_encoding; }
    // The names of a byte's owners, shown when the pointer rests on it.
    void setOwnerNames(std::function<QString(std::size_t)> names) { m_ownerNames = std::move(names); }
    void setEditable(bool editable) { m_editable = editable; }

    std::size_t cursor() const { return m_cursor; }
    // The selected bytes as [first, end); first == end when only the cursor is set.
    std::pair<std::size_t, std::size_t> selection() const { return {m_selectionFirst, m_selectionEnd}; }
    // Moves the cursor there, scrolled into view; the selection ends.
    void setCursor(std::size_t address);
    // Selects [first, end), the cursor on its first byte, scrolled into view.
    void select(std::size_t first, std::size_t end);
    bool textColumnActive() const { return m_textColumn; }
    void setTextColumnActive(bool text);

    std::size_t firstRowShown() const;
    std::size_t rowsShown() const;
    // The byte under a point of the viewport, and the column it lies in.
    std::optional<std::size_t> addressAt(QPoint point, bool* inTextColumn = nullptr) const;
    // Where a byte's cell lies in the viewport (the hex or the text column).
    QRect cellRect(std::size_t address, bool textColumn) const;
    // The colour a byte's cells are filled with; invalid when none.
    QColor fillOf(std::size_t address) const;
    QString toolTipAt(QPoint point) const;

    static QColor ownerColour(image::OwnerKind kind);
    static QColor changedColour();

signals:
    void cursorMoved(std::size_t address);
    // Typed bytes to lay over the image from `address` on.
    void overwriteRequested(std::size_t address, const std::vector<std::uint8_t>& bytes);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void updateScrollBar();
    void moveCursor(std::int64_t step, bool extend);
    // Moves the cursor there, selecting from where the selection began.
    void extendTo(std::size_t address);
    void scrollToCursor();
    void typeHexDigit(int digit);
    void commitPendingDigit();
    void typeText(const QString& text);
    void paintRow(QPainter& painter, std::size_t row, int y);
    void paintText(QPainter& painter, std::span<const std::uint8_t> row, int baseline);
    int hexX(std::size_t column) const;
    int textX(std::size_t column) const;

    std::span<const std::uint8_t> bytes() const
    {
        return m_image ? std::span<const std::uint8_t>(*m_image) : std::span<const std::uint8_t>();
    }

    const std::vector<std::uint8_t>* m_image = nullptr;
    const image::ByteOwners* m_owners = nullptr;
    const image::OriginalBytes* m_originals = nullptr;
    std::function<QString(std::size_t)> m_ownerNames;
    TextEncoding m_encoding = TextEncoding::SingleByte;
    std::string m_codePage;
    CodePageText m_characters;
    std::size_t m_cursor = 0;
    std::size_t m_anchor = 0;  // where a selection by Shift and the arrows began
    std::size_t m_selectionFirst = 0;
    std::size_t m_selectionEnd = 0;
    bool m_textColumn = false;
    // The first hex digit typed on the cursor byte: shown, and written with the second
    // (or when the cursor leaves the byte), so that a byte typed is one undo step.
    std::optional<int> m_pendingHigh;
    bool m_editable = false;
    int m_charWidth = 8;
    int m_lineHeight = 16;
};

}  // namespace zevran::bytes
