#include "editor_commands.hpp"

#include "compare_dialog.hpp"

#include "image/hex_text.hpp"
#include "image/phone_file.hpp"
#include "window/widget_helpers.hpp"

#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace zevran::app {

namespace {

constexpr const char* kProductTitle = "Zevran Handset Workshop V1.11";

}  // namespace

EditorCommands::EditorCommands(window::TabHost& host, QMainWindow* window, const QString& settingsPath)
    : QObject(window), m_host(host), m_window(window), m_history(new ImageHistory(host.document(), this))
{
    m_recentMenu = new QMenu(window);
    m_recentMenu->setObjectName("menurecent");
    m_recent = new RecentFilesMenu(m_recentMenu, settingsPath, this);
    connect(m_recent, &RecentFilesMenu::openRequested, this, &EditorCommands::openRequested);
    m_compare = new QAction(this);
    m_compare->setObjectName("menucompare");
    m_compare->setEnabled(false);
    connect(m_compare, &QAction::triggered, this, &EditorCommands::compareWith);
    applyTexts();
}

void EditorCommands::addFileItems(QMenu* file)
{
    file->addAction(m_compare);
    file->addMenu(m_recentMenu);
}

void EditorCommands::addEditMenu(QMenuBar* bar)
{
    m_editMenu = bar->addMenu(QString());
    m_editMenu->setObjectName("menuedit");
    m_editMenu->addAction(m_history->undoAction());
    m_editMenu->addAction(m_history->redoAction());
    applyTexts();
}

void EditorCommands::applyTexts()
{
    m_compare->setText(m_host.text("menucompare"));
    m_recentMenu->setTitle(m_host.text("menurecent"));
    m_recent->setTexts(m_host.text("menurecentmissing"), m_host.text("menurecentclear"));
    if (m_editMenu) m_editMenu->setTitle(m_host.text("menuedit"));
    m_history->undoAction()->setText(m_host.text("menuundo"));
    m_history->redoAction()->setText(m_host.text("menuredo"));
}

void EditorCommands::imageReplaced(const QString& path)
{
    m_history->opened();
    m_compare->setEnabled(false);
    // Qt shows the "[*]" as a star while the window is marked modified, and not at all otherwise.
    m_window->setWindowTitle(QFileInfo(path).fileName() + "[*] - " + kProductTitle);
    m_window->setWindowModified(false);
}

void EditorCommands::fileOpened(const QString& path)
{
    m_compare->setEnabled(true);
    m_recent->add(path);
}

void EditorCommands::compareWith()
{
    image::ImageState& state = m_host.imageState();
    if (!state.ImageLoaded) return;
    window::ShellSettings& settings = m_host.settings();
    const QString path = m_host.dialogs().openFile(settings.MobileFilePath, m_host.filter(5), 2);
    if (path.isEmpty()) return;
    settings.MobileFilePath = window::fromUtf8(image::FolderOf(path.toStdString()));
    std::vector<std::uint8_t> newer;
    try {
        window::BusyPointer busy;
        newer = image::readPhoneFile(path.toStdString());
    } catch (const std::exception& error) {
        m_host.showFailure(error);
        return;
    }
    const std::size_t newerLength = newer.size();
    // An image held in memory cannot grow; a patch file can reach past its end.
    const auto writable = m_host.takesInImagePatch() ? std::optional(state.FirmwareImage.size()) : std::nullopt;
    CompareDialog* dialog = nullptr;
    try {
        window::BusyPointer busy;
        dialog = new CompareDialog(
            {m_host.text("CompareTitle"),
             {m_host.text("CompareHeader1"), m_host.text("CompareHeader2"), m_host.text("CompareHeader3"),
              m_host.text("CompareHeader4"), m_host.text("CompareHeader5")},
             m_host.text("CompareGap"),
             m_host.text("CompareCheckAll"),
             m_host.text("CompareCheckNone"),
             m_host.text("CompareWrite"),
             m_host.text("CompareCancel"),
             m_host.text("CompareSummary")},
            QFileInfo(path).fileName(), state.FirmwareImage, std::move(newer), writable, m_window);
    } catch (const image::ShorterImage&) {
        m_host.showError(m_host.text("CompareShorter").arg(path).arg(newerLength).arg(state.FirmwareImage.size()));
        return;
    }
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (dialog->ranges().empty()) {
        delete dialog;
        m_host.dialogs().message(0, window::MessageKind::Information, m_host.texts().MsgTitle[2],
                                 m_host.text("CompareEqual"));
        return;
    }
    // Window-modal but not blocking: the image it lists cannot change while it is open.
    connect(dialog, &QDialog::accepted, this, [this, dialog] { writeChecked(*dialog); });
    dialog->open();
}

void EditorCommands::writeChecked(const CompareDialog& dialog)
{
    const std::vector<image::Region> regions = dialog.checkedRegions();
    if (regions.empty()) {
        m_host.ShowMessage(34);
        return;
    }
    if (m_host.takesSRecordPatch()) m_host.writeSRecordPatch(regions);
    else if (m_host.takesInImagePatch()) m_host.patchInImage(regions);
}

}  // namespace zevran::app
