#include "bytes_tab.hpp"

#include "bytes_host.hpp"
#include "bytes_inspector.hpp"
#include "bytes_view.hpp"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

namespace zevran::bytes {

namespace {

QString rowNumber(int row) { return QStringLiteral("%1").arg(row + 1, 3, 10, QLatin1Char('0')); }

}  // namespace

BytesTab::BytesTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("BytesTab");
    buildControls();
    auto shortcut = [this](QKeySequence keys, auto slot) {
        auto* key = new QShortcut(keys, this, slot);
        key->setContext(Qt::WidgetWithChildrenShortcut);
    };
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_G), [this] {
        GoToAddress->setFocus();
        GoToAddress->selectAll();
    });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_F), [this] {
        FindText->setFocus();
        FindText->selectAll();
    });
    shortcut(QKeySequence(Qt::Key_F3), [this] { findNext(); });
    shortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3), [this] { findPrevious(); });
    connect(GoToAddress, &QLineEdit::returnPressed, this, &BytesTab::goTo);
    connect(GoToButton, &QPushButton::clicked, this, &BytesTab::goTo);
    connect(FindText, &QLineEdit::returnPressed, this, &BytesTab::findNext);
    connect(FindNextButton, &QPushButton::clicked, this, &BytesTab::findNext);
    connect(FindPreviousButton, &QPushButton::clicked, this, &BytesTab::findPrevious);
    connect(TextEncodingBox, &QComboBox::currentIndexChanged, this, &BytesTab::applyEncoding);
    connect(view, &BytesView::cursorMoved, this, &BytesTab::cursorMoved);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QWidget::customContextMenuRequested, this, &BytesTab::showViewMenu);
    view->setOwnerNames([this](std::size_t address) { return ownerText(address); });
}

void BytesTab::buildControls()
{
    auto* layout = new QVBoxLayout(this);
    auto* bar = new QHBoxLayout;
    layout->addLayout(bar);
    auto named = [](auto* widget, const char* name) {
        widget->setObjectName(name);
        return widget;
    };
    bar->addWidget(m_goToLabel = new QLabel(this));
    bar->addWidget(GoToAddress = named(new QLineEdit(this), "GoToAddress"));
    GoToAddress->setMaximumWidth(140);
    bar->addWidget(GoToButton = named(new QPushButton(this), "GoToButton"));
    bar->addSpacing(16);
    bar->addWidget(m_findLabel = new QLabel(this));
    bar->addWidget(FindText = named(new QLineEdit(this), "FindText"), 1);
    bar->addWidget(FindKind = named(new QComboBox(this), "FindKind"));
    bar->addWidget(FindPreviousButton = named(new QPushButton(this), "FindPreviousButton"));
    bar->addWidget(FindNextButton = named(new QPushButton(this), "FindNextButton"));
    bar->addSpacing(16);
    bar->addWidget(TextEncodingBox = named(new QComboBox(this), "TextEncodingBox"));
    for (int i = 0; i < 3; ++i) FindKind->addItem(QString());
    for (int i = 0; i < 2; ++i) TextEncodingBox->addItem(QString());
    m_panes = named(new QSplitter(Qt::Horizontal, this), "BytesPanes");
    layout->addWidget(m_panes, 1);
    m_panes->addWidget(view = new BytesView(m_panes));
    m_panes->addWidget(inspector = new BytesInspector(m_panes));
    m_panes->setStretchFactor(0, 1);
    m_panes->setStretchFactor(1, 0);
    inspector->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    layout->addWidget(BytesStatus = named(new QLabel(this), "BytesStatus"));
    viewMenu = named(new QMenu(this), "BytesMenu");
    ShowOwner = viewMenu->addAction(QString());
    ShowOwner->setObjectName("ShowOwner");
    connect(ShowOwner, &QAction::triggered, this, &BytesTab::showOwner);
    WriteChangesAsPatch = viewMenu->addAction(QString());
    WriteChangesAsPatch->setObjectName("WriteChangesAsPatch");
    connect(WriteChangesAsPatch, &QAction::triggered, this, [this] { m_host->writeChangesAsPatch(); });
}

void BytesTab::attach(BytesHost& host)
{
    m_host = &host;
    connect(view, &BytesView::overwriteRequested, this,
            [this](std::size_t address, const std::vector<std::uint8_t>& bytes) {
                m_host->overwriteBytes(static_cast<std::int64_t>(address), bytes);
            });
    imageReplaced();
}

void BytesTab::applyTexts()
{
    const window::TabHost& host = m_host->tabHost();
    m_goToLabel->setText(host.text("BytesGoTo"));
    GoToButton->setText(host.text("BytesGoToButton"));
    m_findLabel->setText(host.text("BytesFind"));
    FindKind->setItemText(0, host.text("BytesFindHex"));
    FindKind->setItemText(1, host.text("BytesFindSingle"));
    FindKind->setItemText(2, host.text("BytesFindHandset"));
    FindPreviousButton->setText(host.text("BytesFindPrevious"));
    FindNextButton->setText(host.text("BytesFindNext"));
    TextEncodingBox->setItemText(0, host.text("BytesTextSingle"));
    TextEncodingBox->setItemText(1, host.text("BytesTextHandset"));
    ShowOwner->setText(host.text("BytesShowOwner"));
    WriteChangesAsPatch->setText(host.text("BytesWritePatch"));
    inspector->applyTexts(host);
}

void BytesTab::imageReplaced()
{
    view->setImage(&m_host->tabHost().imageState().FirmwareImage);
    view->setOriginals(&m_host->originals());
    // The window refuses edits of an image that is no phone file of a known kind.
    view->setEditable(true);
    applyEncoding();
    refreshOwners();
    // A new file is looked at from its start.
    view->setCursor(0);
    cursorMoved(view->cursor());
}

void BytesTab::imageChanged()
{
    view->viewport()->update();
    cursorMoved(view->cursor());
}

void BytesTab::refreshOwners()
{
    m_owners = image::ByteOwners(m_host->ownedRanges());
    view->setOwners(&m_owners);
}

void BytesTab::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_host) refreshOwners();
}

void BytesTab::applyEncoding()
{
    if (!m_host) return;
    view->setEncoding(TextEncodingBox->currentIndex() == 1 ? TextEncoding::HandsetCodes : TextEncoding::SingleByte,
                      m_host->tabHost().codePage());
}

void BytesTab::cursorMoved(std::size_t address)
{
    const auto& image = m_host->tabHost().imageState().FirmwareImage;
    inspector->showAt(image, address);
    BytesStatus->setText(image.empty() ? QString()
                                       : "0x" + QStringLiteral("%1").arg(address, 8, 16, QLatin1Char('0')).toUpper());
}

QString BytesTab::ownerName(const image::ByteOwner& owner) const
{
    const window::TabHost& host = m_host->tabHost();
    switch (owner.kind) {
    case image::OwnerKind::Tone: return host.text("BytesOwnerTone").arg(rowNumber(owner.row));
    case image::OwnerKind::PictureFrame:
        return host.text("BytesOwnerPicture").arg(rowNumber(owner.row)).arg(owner.frame + 1);
    case image::OwnerKind::EditRow: return host.text("BytesOwnerEditRow").arg(rowNumber(owner.row));
    }
    return {};
}

QString BytesTab::ownerText(std::size_t address) const
{
    QStringList names;
    for (const image::ByteOwner& owner : m_owners.ownersAt(static_cast<std::int64_t>(address)))
        names << ownerName(owner);
    if (m_host->originals().changedAt(m_host->tabHost().imageState().FirmwareImage, address))
        names << m_host->tabHost().text("BytesOwnerChanged");
    return names.join(QStringLiteral(", "));
}

void BytesTab::showBytes(std::int64_t first, std::int64_t end)
{
    const auto size = static_cast<std::int64_t>(m_host->tabHost().imageState().FirmwareImage.size());
    if (first < 0 || first >= size) return;
    view->select(static_cast<std::size_t>(first), static_cast<std::size_t>(std::min(end, size)));
    view->setFocus();
}

void BytesTab::showOwner()
{
    if (const auto owner = m_owners.ownerAt(static_cast<std::int64_t>(view->cursor()))) m_host->showOwner(*owner);
}

void BytesTab::showViewMenu(const QPoint& position)
{
    if (const auto address = view->addressAt(position)) view->setCursor(*address);
    window::TabHost& host = m_host->tabHost();
    ShowOwner->setEnabled(m_owners.ownerAt(static_cast<std::int64_t>(view->cursor())).has_value());
    WriteChangesAsPatch->setEnabled(host.takesSRecordPatch() &&
                                    !m_host->originals().changedSpans(host.imageState().FirmwareImage).empty());
    viewMenu->popup(view->viewport()->mapToGlobal(position));
}

void BytesTab::goTo()
{
    const auto& image = m_host->tabHost().imageState().FirmwareImage;
    const auto address = parseAddress(GoToAddress->text().toStdString(), image.size());
    if (!address) {
        BytesStatus->setText(m_host->tabHost().text("BytesBadAddress"));
        return;
    }
    view->setCursor(*address);
    view->setFocus();
}

void BytesTab::find(bool forward)
{
    window::TabHost& host = m_host->tabHost();
    const auto& image = host.imageState().FirmwareImage;
    static constexpr PatternKind kKinds[] = {PatternKind::Hex, PatternKind::SingleByte, PatternKind::HandsetCodes};
    const auto pattern =
        patternBytes(FindText->text().toStdString(), kKinds[std::max(0, FindKind->currentIndex())], host.codePage());
    if (!pattern) {
        BytesStatus->setText(host.text("BytesBadPattern"));
        return;
    }
    // With nothing selected the search starts on the cursor; after a hit, past it.
    const auto [first, end] = view->selection();
    const std::size_t from = forward ? view->cursor() + (first == end ? 0 : 1) : view->cursor();
    const auto found = findPattern(image, *pattern, from, forward);
    if (!found) {
        BytesStatus->setText(host.text("BytesNotFound"));
        return;
    }
    view->select(found->address, found->address + pattern->size());
    if (found->wrapped) BytesStatus->setText(host.text("BytesFoundWrapped"));
}

}  // namespace zevran::bytes
