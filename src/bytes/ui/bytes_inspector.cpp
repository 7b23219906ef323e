#include "bytes_inspector.hpp"

#include "bytes/byte_values.hpp"
#include "window/tab_host.hpp"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace zevran::bytes {

namespace {

QLabel* valueLabel(QWidget* parent, const QString& name)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

}  // namespace

BytesInspector::BytesInspector(QWidget* parent) : QWidget(parent)
{
    setObjectName("BytesInspector");
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    m_box = new QGroupBox(this);
    outer->addWidget(m_box);
    outer->addStretch(1);
    auto* grid = new QGridLayout(m_box);
    static constexpr const char* kColumns[] = {"UnsignedLittle", "SignedLittle", "UnsignedBig", "SignedBig"};
    static constexpr int kBits[] = {8, 16, 32};
    for (std::size_t c = 0; c < 4; ++c)
        grid->addWidget(m_columnHeads[c] = new QLabel(m_box), 0, static_cast<int>(c) + 1);
    for (std::size_t r = 0; r < 3; ++r) {
        grid->addWidget(m_rowHeads[r] = new QLabel(m_box), static_cast<int>(r) + 1, 0);
        for (std::size_t c = 0; c < 4; ++c) {
            numbers[r][c] = valueLabel(m_box, QStringLiteral("Inspector%1%2").arg(kBits[r]).arg(kColumns[c]));
            grid->addWidget(numbers[r][c], static_cast<int>(r) + 1, static_cast<int>(c) + 1);
        }
    }
    for (std::size_t d = 0; d < kPixelDepths.size(); ++d) {
        const int row = static_cast<int>(d) + 4;
        grid->addWidget(m_depthHeads[d] = new QLabel(m_box), row, 0);
        swatches[d] = new QLabel(m_box);
        swatches[d]->setObjectName(QStringLiteral("Swatch%1").arg(kPixelDepths[d]));
        swatches[d]->setFixedSize(32, 16);
        swatches[d]->setAutoFillBackground(true);
        grid->addWidget(swatches[d], row, 1);
        pixelHex[d] = valueLabel(m_box, QStringLiteral("SwatchHex%1").arg(kPixelDepths[d]));
        grid->addWidget(pixelHex[d], row, 2);
    }
}

void BytesInspector::applyTexts(const window::TabHost& host)
{
    m_box->setTitle(host.text("BytesInspector"));
    static constexpr const char* kColumnKeys[] = {"BytesUnsignedLittle", "BytesSignedLittle", "BytesUnsignedBig",
                                                  "BytesSignedBig"};
    for (std::size_t c = 0; c < 4; ++c) m_columnHeads[c]->setText(host.text(kColumnKeys[c]));
    static constexpr int kBits[] = {8, 16, 32};
    for (std::size_t r = 0; r < 3; ++r) m_rowHeads[r]->setText(host.text("BytesBits").arg(kBits[r]));
    for (std::size_t d = 0; d < kPixelDepths.size(); ++d)
        m_depthHeads[d]->setText(host.text("BytesPixel").arg(kPixelDepths[d]));
}

void BytesInspector::showAt(std::span<const std::uint8_t> image, std::size_t address)
{
    const auto values = numbersAt(image, address);
    for (std::size_t r = 0; r < values.size(); ++r) {
        const NumberAt& value = values[r];
        const QString cells[] = {QString::number(value.littleEndian), QString::number(value.signedLittle()),
                                 QString::number(value.bigEndian), QString::number(value.signedBig())};
        for (std::size_t c = 0; c < 4; ++c) numbers[r][c]->setText(value.present ? cells[c] : QString());
    }
    for (std::size_t d = 0; d < kPixelDepths.size(); ++d) {
        const auto pixel = pixelAt(image, address, kPixelDepths[d]);
        QPalette colours = swatches[d]->palette();
        colours.setColor(QPalette::Window,
                         pixel ? QColor(pixel->red, pixel->green, pixel->blue) : QColor(Qt::transparent));
        swatches[d]->setPalette(colours);
        const int digits = (kPixelDepths[d] + 3) / 4;
        pixelHex[d]->setText(pixel ? QStringLiteral("%1").arg(pixel->stored, digits, 16, QLatin1Char('0')).toUpper()
                                   : QString());
    }
}

}  // namespace zevran::bytes
