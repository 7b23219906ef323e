// Beside the byte view: what the bytes at the cursor read as, numbers of 8, 16 and 32
// bits both unsigned and signed in both byte orders, and a swatch of the pixel each
// depth the preview decodes would show there, with its stored value in hex.
#pragma once

#include <QWidget>
#include <array>
#include <cstdint>
#include <span>

class QGroupBox;
class QLabel;

namespace zevran::window {
class TabHost;
}

namespace zevran::bytes {

class BytesInspector : public QWidget {
    Q_OBJECT
public:
    explicit BytesInspector(QWidget* parent = nullptr);

    void showAt(std::span<const std::uint8_t> image, std::size_t address);
    void applyTexts(const window::TabHost& host);

    // [row: 8, 16, 32 bits][column: unsigned little, signed little, unsigned big, signed big]
    std::array<std::array<QLabel*, 4>, 3> numbers{};
    std::array<QLabel*, 4> swatches{};  // depths 8, 12, 16, 24
    std::array<QLabel*, 4> pixelHex{};

private:
    QGroupBox* m_box = nullptr;
    std::array<QLabel*, 4> m_columnHeads{};
    std::array<QLabel*, 3> m_rowHeads{};
    std::array<QLabel*, 4> m_depthHeads{};
};

}  // namespace zevran::bytes
