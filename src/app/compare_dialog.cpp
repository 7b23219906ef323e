#include "compare_dialog.hpp"

#include "image/hex_text.hpp"
#include "window/widget_helpers.hpp"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeView>
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

using Column = window::RowColumn<CompareRow>;

Column textColumn(std::function<QString(const CompareRow&)> text)
{
    Column column;
    column.text = std::move(text);
    // An image that cannot grow cannot take the bytes past its end.
    column.enabled = [](const CompareRow& row) { return row.writable; };
    return column;
}

// First, last, size (right-aligned), the open image's bytes, the second image's; the
// check box of the first says the region is written.
window::RowTableModel<CompareRow>* makeCompareModel(const CompareTexts& texts, QObject* parent)
{
    Column first = textColumn([](const CompareRow& row) { return hexAddress(row.range.first); });
    first.checked = [](const CompareRow& row) { return row.checked; };
    first.setChecked = [](CompareRow& row, bool checked) { row.checked = checked; };
    Column size = textColumn([](const CompareRow& row) { return QString::number(row.range.size()); });
    size.alignment = Qt::AlignRight | Qt::AlignVCenter;
    auto* model = new window::RowTableModel<CompareRow>(
        {first, textColumn([](const CompareRow& row) { return hexAddress(row.range.last); }), size,
         textColumn([](const CompareRow& row) { return row.olderBytes; }),
         textColumn([](const CompareRow& row) { return row.newerBytes; })},
        parent);
    model->setHeaders({texts.headers[0], texts.headers[1], texts.headers[2], texts.headers[3], texts.headers[4]});
    return model;
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

    m_rows = makeCompareModel(texts, this);
    m_list = window::reportView("CompareList", m_rows, this);
    m_list->setAlternatingRowColors(false);
    m_list->header()->setStretchLastSection(false);
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
    connect(m_rows, &QAbstractItemModel::dataChanged, this, [this] { updateSummary(); });

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
    fillList(*ranges);
}

void CompareDialog::fillList(const std::vector<image::DiffRange>& ranges)
{
    std::vector<CompareRow> rows;
    rows.reserve(ranges.size());
    for (const image::DiffRange& range : ranges) {
        const bool writable = !m_writableLength || static_cast<std::uint64_t>(range.last) < *m_writableLength;
        rows.push_back({range, QString::fromStdString(image::previewBytes(m_older, range)),
                        QString::fromStdString(image::previewBytes(m_newer, range)), writable, writable});
    }
    m_rows->setRows(std::move(rows));
    updateSummary();
}

void CompareDialog::updateSummary()
{
    const std::vector<image::DiffRange> checked = checkedRanges();
    std::int64_t bytes = 0;
    for (const image::DiffRange& range : checked) bytes += range.size();
    m_summary->setText(m_texts.summary.arg(checked.size()).arg(bytes));
    m_write->setEnabled(!checked.empty());
}

std::vector<image::DiffRange> CompareDialog::ranges() const
{
    std::vector<image::DiffRange> all;
    all.reserve(m_rows->rows().size());
    for (const CompareRow& row : m_rows->rows()) all.push_back(row.range);
    return all;
}

std::vector<image::DiffRange> CompareDialog::checkedRanges() const
{
    std::vector<image::DiffRange> checked;
    for (const CompareRow& row : m_rows->rows())
        if (row.checked) checked.push_back(row.range);
    return checked;
}

std::vector<image::Region> CompareDialog::checkedRegions() const
{
    return image::diffRegions(m_newer, checkedRanges());
}

void CompareDialog::setGap(int gap) { m_gap->setValue(gap); }

void CompareDialog::checkAll(bool checked)
{
    m_rows->changeEveryRow([checked](CompareRow& row) { row.checked = row.writable && checked; });
}

}  // namespace zevran::app
