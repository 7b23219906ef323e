#include "compare_dialog.hpp"

#include "image/hex_text.hpp"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>

namespace zevran::app {

namespace {

// The gap starts at 0, as zevran-cli diff's does; raising it joins nearby runs into
// fewer, longer rows.
constexpr int kLargestGap = 1 << 20;
constexpr std::size_t kRowLimit = 10000;

QString hexAddress(std::int32_t address)
{
    return "0x" + QString::fromStdString(image::HexPad(static_cast<std::uint32_t>(address), 8));
}

}  // namespace

CompareDialog::CompareDialog(const CompareTexts& texts, const QString& newerName, std::span<const std::uint8_t> older,
                             std::vector<std::uint8_t> newer, std::optional<std::size_t> writableLength,
                             QWidget* parent)
    : QDialog(parent), m_texts(texts), m_older(older), m_newer(std::move(newer)), m_writableLength(writableLength)
{
    setObjectName("CompareDialog");
    setWindowTitle(texts.title.arg(newerName));

    m_gap = new QSpinBox(this);
    m_gap->setObjectName("CompareGap");
    m_gap->setRange(0, kLargestGap);
    auto* gapLabel = new QLabel(texts.gap, this);
    gapLabel->setBuddy(m_gap);

    m_list = new QTreeWidget(this);
    m_list->setObjectName("CompareList");
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setColumnCount(5);
    m_list->setHeaderLabels({texts.headers[0], texts.headers[1], texts.headers[2], texts.headers[3], texts.headers[4]});
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);

    m_summary = new QLabel(this);
    m_summary->setObjectName("CompareSummary");

    auto* all = new QPushButton(texts.checkAll, this);
    all->setObjectName("CompareCheckAll");
    auto* none = new QPushButton(texts.checkNone, this);
    none->setObjectName("CompareCheckNone");
    m_write = new QPushButton(texts.write, this);
    m_write->setObjectName("CompareWrite");
    m_write->setDefault(true);
    auto* cancel = new QPushButton(texts.cancel, this);
    cancel->setObjectName("CompareCancel");

    auto* top = new QHBoxLayout;
    top->addWidget(gapLabel);
    top->addWidget(m_gap);
    top->addStretch(1);
    top->addWidget(m_summary);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(all);
    buttons->addWidget(none);
    buttons->addStretch(1);
    buttons->addWidget(m_write);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    resize(760, 420);

    connect(all, &QPushButton::clicked, this, [this] { checkAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { checkAll(false); });
    connect(m_write, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_gap, &QSpinBox::valueChanged, this, [this] { compare(); });
    connect(m_list, &QTreeWidget::itemChanged, this, [this] { updateSummary(); });

    compare();
}

void CompareDialog::compare()
{
    // Two images that differ all over would list millions of slivers: the gap is raised
    // until the regions fit a list one can read.
    int gap = m_gap->value();
    auto ranges = image::compareImagesUpTo(m_older, m_newer, static_cast<std::size_t>(gap), kRowLimit);
    while (!ranges) {
        gap = gap >= kLargestGap / 4 ? kLargestGap : std::max(1, gap * 4);
        ranges = image::compareImagesUpTo(m_older, m_newer, static_cast<std::size_t>(gap),
                                          gap == kLargestGap ? std::numeric_limits<std::size_t>::max() : kRowLimit);
    }
    if (gap != m_gap->value()) {
        const QSignalBlocker quiet(m_gap);
        m_gap->setValue(gap);
    }
    m_ranges = std::move(*ranges);
    fillList();
}

void CompareDialog::fillList()
{
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(m_ranges.size()));
    for (const image::DiffRange& range : m_ranges) {
        auto* item = new QTreeWidgetItem;
        item->setText(0, hexAddress(range.first));
        item->setText(1, hexAddress(range.last));
        item->setText(2, QString::number(range.size()));
        item->setText(3, QString::fromStdString(image::previewBytes(m_older, range)));
        item->setText(4, QString::fromStdString(image::previewBytes(m_newer, range)));
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        // An image that cannot grow cannot take the bytes past its end.
        const bool writable = !m_writableLength || static_cast<std::uint64_t>(range.last) < *m_writableLength;
        if (!writable) item->setFlags(item->flags() & ~(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled));
        item->setCheckState(0, writable ? Qt::Checked : Qt::Unchecked);
        items.push_back(item);
    }
    m_list->addTopLevelItems(items);
    updateSummary();
}

void CompareDialog::updateSummary()
{
    std::int64_t bytes = 0;
    int count = 0;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        if (m_list->topLevelItem(row)->checkState(0) != Qt::Checked) continue;
        ++count;
        bytes += m_ranges[static_cast<std::size_t>(row)].size();
    }
    m_summary->setText(m_texts.summary.arg(count).arg(bytes));
    m_write->setEnabled(count > 0);
}

std::vector<image::DiffRange> CompareDialog::checkedRanges() const
{
    std::vector<image::DiffRange> checked;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row)
        if (m_list->topLevelItem(row)->checkState(0) == Qt::Checked)
            checked.push_back(m_ranges[static_cast<std::size_t>(row)]);
    return checked;
}

std::vector<image::Region> CompareDialog::checkedRegions() const
{
    return image::diffRegions(m_newer, checkedRanges());
}

void CompareDialog::setGap(int gap) { m_gap->setValue(gap); }

void CompareDialog::checkAll(bool checked)
{
    {
        const QSignalBlocker quiet(m_list);
        for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
            QTreeWidgetItem* item = m_list->topLevelItem(row);
            if (item->flags() & Qt::ItemIsUserCheckable) item->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
        }
    }
    updateSummary();
}

}  // namespace zevran::app
