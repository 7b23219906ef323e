#include "main_window.hpp"

#include "about_tab.hpp"
#include "bytes_link.hpp"
#include "help_viewer.hpp"
#include "editor_commands.hpp"
#include "failure_texts.hpp"
#include "language.hpp"
#include "settings/profile_file.hpp"

#include "image/ui/converter_tab.hpp"
#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/messages.hpp"
#include "image/phone_file.hpp"
#include "window/widget_helpers.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/code_page.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QCloseEvent>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <algorithm>
#include <cstdlib>

namespace zevran::app {

using window::BusyPointer;
using window::fromUtf8;

namespace {

constexpr const char* kHomePage = "https://zevran-workshop.example.org/";

}  // namespace

Form1::Form1(const QString& programFolder, std::unique_ptr<Dialogs> dialogs, QWidget* parent)
    : Form1(portableFolders(programFolder.toStdString()), std::move(dialogs), parent)
{
}

Form1::Form1(const ProgramFolders& folders, std::unique_ptr<Dialogs> dialogs, QWidget* parent)
    : QMainWindow(parent), m_folders(folders), m_dataFolder(QString::fromStdString(folders.dataFolder)),
      m_dialogs(std::move(dialogs))
{
    if (!m_dialogs) m_dialogs = std::make_unique<QtDialogs>(this);
    setObjectName("Form1");
    setWindowTitle(QStringLiteral("Zevran Handset Workshop V1.11"));
    setAcceptDrops(true);
    setWindowIcon(QIcon(m_dataFolder + "/zevran.xpm"));
    buildTabs();
    buildMenus();
    buildToolBar();
    buildStatusBar();
    attachTabs();
    // Save is enabled exactly while the image differs from its phone file.
    connect(&m_editor->history(), &ImageHistory::modifiedChanged, this, [this](bool modified) {
        // A "bin" image is never saved: its changes leave as a patch.
        m_save->setEnabled(modified && takesInImagePatch());
        setWindowModified(modified);
    });
    // Every view of image bytes follows an output, an undo or a redo.
    connect(&m_editor->history(), &ImageHistory::imageChanged, this, [this] {
        m_tonesTab->showToneCheck();
        m_picturesTab->imageBytesChanged();
    });
    connect(m_editor, &EditorCommands::openRequested, this, &Form1::openPhoneFile);
    resize(1100, 720);
}

Form1::~Form1() = default;

QString Form1::settingsPath() const { return QString::fromStdString(m_folders.settingsFile); }

QString Form1::filter(int number) const
{
    return qtFilterFromClassic(m_texts.Filter[static_cast<std::size_t>(number)]);
}

void Form1::buildTabs()
{
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName("SSTab1");
    m_tonesTab = new tones::TonesTab(m_tabs);
    m_stringsTab = new strings::StringsTab(m_tabs);
    m_picturesTab = new pictures::PicturesTab(m_tabs);
    m_converterTab = new image::ConverterTab(m_tabs);
    m_aboutTab = new AboutTab(m_tabs);
    m_tabs->addTab(m_tonesTab, tr("Ring tones"));
    m_tabs->addTab(m_stringsTab, tr("Text strings"));
    m_tabs->addTab(m_picturesTab, tr("Pictures"));
    m_tabs->addTab(m_converterTab, tr("Converter"));
    m_tabs->addTab(m_aboutTab, tr("About"));
    setCentralWidget(m_tabs);
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        if (index == 4) m_aboutTab->startScroller();
        else m_aboutTab->stopScroller();
        // The selected tone's details are shown on the ring-tone tab only.
        m_statusPanels[1]->setVisible(index == 0);
        m_toneDetailsLine->setVisible(index == 0);
    });
    connect(m_aboutTab, &AboutTab::homePageRequested, this, &Form1::homepage_Click);
}

void Form1::buildMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->setObjectName("file");
    QAction* open = file->addAction(tr("&Open..."));
    open->setObjectName("menuopen");
    open->setShortcut(QKeySequence::Open);
    connect(open, &QAction::triggered, this, &Form1::menuopen_Click);
    m_editor = new EditorCommands(*this, this, settingsPath());
    m_editor->addFileItems(file);
    m_bytes = new BytesLink(*this, m_editor->history(), this);
    m_bytes->addFileItem(file);
    file->addSeparator()->setObjectName("line9");
    m_languageMenu = file->addMenu(tr("&Language"));
    m_languageMenu->setObjectName("menulanguage");
    addLanguageItem(1, QStringLiteral("ChineseS"));
    file->addSeparator()->setObjectName("line7");
    QAction* exit = file->addAction(tr("E&xit"));
    exit->setObjectName("menuexit");
    exit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(exit, &QAction::triggered, this, &QWidget::close);
    m_editor->addEditMenu(menuBar());

    QMenu* helpMenu = menuBar()->addMenu(tr("&Help"));
    helpMenu->setObjectName("menuhelp");
    QAction* help = helpMenu->addAction(tr("&Help"));
    help->setObjectName("help");
    help->setShortcut(QKeySequence::HelpContents);
    connect(help, &QAction::triggered, this, &Form1::help_Click);
    QAction* homepage = helpMenu->addAction(tr("Home &page"));
    homepage->setObjectName("homepage");
    connect(homepage, &QAction::triggered, this, &Form1::homepage_Click);

    // The pop-up menus of the lists, each handed to its tab, which fills it with its
    // commands; the tone check's status panel goes to the ring-tone tab.
    for (std::size_t i = 0; i < m_popups.size(); ++i) {
        m_popups[i] = new QMenu(QStringLiteral("Popup Menu%1").arg(i + 1), this);
        m_popups[i]->setObjectName(QStringLiteral("menufile%1").arg(i + 1));
    }
}

void Form1::attachTabs()
{
    m_tonesTab->attach(*this, m_popups[0], m_popups[1], m_popups[2], m_statusPanels[1]);
    m_stringsTab->attach(*this, m_popups[3]);
    m_picturesTab->attach(*this, m_popups[4]);
    m_converterTab->attach(*this);
    m_bytes->attach(m_tabs, {m_tonesTab, m_stringsTab, m_picturesTab, m_popups[0], m_popups[3], m_popups[4]});
}

QAction* Form1::addLanguageItem(int index, const QString& caption)
{
    QAction* item = m_languageMenu->addAction(caption);
    item->setObjectName("languagNum");
    item->setData(index);
    item->setCheckable(true);
    connect(item, &QAction::triggered, this, [this, index] { languagNum_Click(index); });
    m_languageItems.push_back(item);
    return item;
}

void Form1::buildToolBar()
{
    auto* bar = m_toolBar = addToolBar(tr("Tools"));
    bar->setObjectName("Toolbar1");
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_openTool = bar->addAction(style()->standardIcon(QStyle::SP_DialogOpenButton), tr("Open"));
    m_openTool->setObjectName("Open");
    connect(m_openTool, &QAction::triggered, this, &Form1::menuopen_Click);
    m_save = bar->addAction(style()->standardIcon(QStyle::SP_DialogSaveButton), tr("Save"));
    m_save->setObjectName("Save");
    m_save->setShortcut(QKeySequence::Save);
    m_save->setEnabled(false);
    connect(m_save, &QAction::triggered, this, [this] { Saveaxf(true); });
    m_exitTool = bar->addAction(style()->standardIcon(QStyle::SP_DialogCloseButton), tr("Exit"));
    m_exitTool->setObjectName("Exit");
    connect(m_exitTool, &QAction::triggered, this, &QWidget::close);
}

void Form1::buildStatusBar()
{
    statusBar()->setObjectName("StatusBar1");
    for (std::size_t i = 0; i < m_statusPanels.size(); ++i) {
        // A line before the tone details, the version, the file name and the busy sign.
        if (i == 1 || i == 2 || i == 4 || i == 6) {
            auto* line = new QFrame(statusBar());
            line->setObjectName(QStringLiteral("StatusBar1Line%1").arg(i + 1));
            line->setFrameStyle(QFrame::VLine | QFrame::Sunken);
            statusBar()->addWidget(line);
            if (i == 1) m_toneDetailsLine = line;
        }
        m_statusPanels[i] = new QLabel(statusBar());
        m_statusPanels[i]->setObjectName(QStringLiteral("StatusBar1Panel%1").arg(i + 1));
        statusBar()->addWidget(m_statusPanels[i], i == 5 ? 1 : 0);
    }
    setBusy(false);
}

void Form1::setBusy(bool busy)
{
    if (QLabel* panel = m_statusPanels[6])
        panel->setPixmap(
            style()->standardIcon(busy ? QStyle::SP_BrowserReload : QStyle::SP_DialogApplyButton).pixmap(16, 16));
}

void Form1::LoadSettings()
{
    const ProfileFile settings(settingsPath().toStdString());
    const auto codePage = settings.read("Options", "Code Page");
    m_codePage = codePage && !codePage->empty() ? *codePage : std::string(strings::kDefaultCodePage);
    m_settings.Language = fromUtf8(settings.ReadSetting("Language", "Language", ""));
    BuildLanguageMenu();
    loadFolders(m_settings, settings, QString::fromStdString(m_folders.startFolder));
    m_tonesTab->setCurrentFolder(m_settings.mmfFilePath);
    m_tabs->setTabEnabled(1, false);
    m_tabs->setTabEnabled(2, false);
    m_tabs->setCurrentIndex(0);
    const std::string geometry = settings.read("Window", "Geometry").value_or("");
    if (!geometry.empty()) restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(geometry)));
    fitIntoScreen();
    // The tab last used, unless it waits for a phone file.
    const int tab = std::atoi(settings.read("Window", "Tab").value_or("0").c_str());
    if (tab > 0 && tab < m_tabs->count() && m_tabs->isTabEnabled(tab)) m_tabs->setCurrentIndex(tab);
    // The panes of each tab as the user last left them.
    for (QSplitter* panes : m_tabs->findChildren<QSplitter*>()) {
        const std::string state = settings.read("Window", panes->objectName().toStdString()).value_or("");
        if (!state.empty()) panes->restoreState(QByteArray::fromBase64(QByteArray::fromStdString(state)));
    }
}

// A size remembered on a larger screen (or widened by a long text) would put the
// window's edges out of reach: it is fitted to the screen it opens on.
void Form1::fitIntoScreen()
{
    const QScreen* shown = screen();
    if (!shown) return;
    const QRect room = shown->availableGeometry();
    const QSize fitted = size().boundedTo(room.size());
    if (fitted != size()) resize(fitted);
    const QRect frame = frameGeometry();
    if (!room.contains(frame))
        move(std::clamp(frame.left(), room.left(), std::max(room.left(), room.right() - frame.width() + 1)),
             std::clamp(frame.top(), room.top(), std::max(room.top(), room.bottom() - frame.height() + 1)));
}

void Form1::BuildLanguageMenu()
{
    // The shipped files and, when installed, the user's own, in one list.
    QStringList files;
    for (const std::string& name : languageFileNames(m_folders)) files.append(QString::fromStdString(name));
    if (files.isEmpty()) return;
    // Departure: a first run stores the bare name, which the classic second start
    // applied as a new, empty file, leaving a window without a caption. The bare name
    // now reads as its ".ini" file where that file exists.
    if (!m_settings.Language.isEmpty() && !m_settings.Language.endsWith(".ini") &&
        files.contains(m_settings.Language + ".ini"))
        m_settings.Language += ".ini";
    for (int i = 0; i < files.size(); ++i) {
        QAction* item = i == 0 ? m_languageItems[0] : addLanguageItem(i + 1, QString());
        item->setText(files[i].left(files[i].size() - 4));
        item->setChecked(m_settings.Language == files[i]);
    }
    if (m_settings.Language.isEmpty()) {
        // Departure: a first run took the first language's bare name and applied nothing,
        // leaving empty captions. It now takes the locale's language, as an installed
        // first start does, applies it and writes it at once.
        const QString locale =
            QString::fromStdString(localeLanguageFile(QLocale().uiLanguages().value(0).toStdString()));
        m_settings.Language = files.contains(locale) ? locale : files.first();
        for (QAction* item : m_languageItems) item->setChecked(item->text() + ".ini" == m_settings.Language);
        ProfileFile(settingsPath().toStdString())
            .WriteSetting("Language", "Language", m_settings.Language.toStdString());
    }
    applyLanguage(m_settings.Language);
}

void Form1::applyLanguage(const QString& name)
{
    const LanguageFile file = findLanguageFile(m_folders, name.toStdString());
    ApplyLanguage(this, file.path, m_texts, m_codePage, file.writeBack);
    // The language's "no file" texts replace the panels: an open file is named again.
    if (!m_openFileName.isEmpty()) {
        m_statusPanels[5]->setText(m_openFileName);
        m_statusPanels[3]->setText(m_openVersion);
    }
    m_workshopTexts.load(file.path, findLanguageFile(m_folders, "English.ini").path, m_codePage);
    applyWorkshopTexts();
}

void Form1::applyWorkshopTexts()
{
    m_toolBar->setWindowTitle(text("ToolBarName"));
    m_openTool->setText(text("ToolOpen"));
    m_save->setText(text("ToolSave"));
    m_exitTool->setText(text("ToolExit"));
    m_aboutTab->applyTexts(*this);
    m_tonesTab->applyTexts();
    m_picturesTab->applyTexts();
    m_stringsTab->applyTexts();
    m_converterTab->applyTexts();
    m_editor->applyTexts();
    m_bytes->applyTexts();
}

void Form1::languagNum_Click(int index)
{
    m_settings.Language = m_languageItems[static_cast<std::size_t>(index - 1)]->text() + ".ini";
    applyLanguage(m_settings.Language);
    for (QAction* item : m_languageItems) item->setChecked(item->data().toInt() == index);
}

void Form1::menuopen_Click()
{
    const QString path = m_dialogs->openFile(m_settings.MobileFilePath, filter(5), 2);
    if (path.isEmpty()) return;
    openPhoneFile(path);
}

bool Form1::mayReplaceImage()
{
    // A running command works on the image it started with.
    if (!m_mayClose || m_converterTab->converting()) {
        ShowMessage(32);
        return false;
    }
    return mayLeaveImage();
}

void Form1::openPhoneFile(const QString& path)
{
    // Departure: the classic Open replaced changed bytes without a word. Every
    // replacement of the image (Open, Recent, drop, hand-over) asks as closing does.
    if (!mayReplaceImage()) return;
    const std::string file = path.toStdString();
    m_settings.MobileFilePath = fromUtf8(image::FolderOf(file));
    if (!readPhoneFile(file)) return;
    m_editor->imageReplaced(path);
    QString version;
    try {
        version = versionText();
    } catch (const image::VersionOutOfImage& error) {
        // The new bytes are in, but the open did not finish: the document is of kind
        // "other", so nothing is written out as if it were the file open before.
        enableOutputsForKind();
        m_save->setEnabled(false);
        showError(path + ": " + failureText(error));
        return;
    }
    m_openFileName = fromUtf8(image::FileNameOf(file));
    m_openVersion = version;
    m_statusPanels[5]->setText(m_openFileName);
    m_statusPanels[3]->setText(m_openVersion);
    m_tabs->setTabEnabled(1, true);
    m_tabs->setTabEnabled(2, true);
    enableOutputsForKind();
    m_save->setEnabled(false);
    if (m_document.loaded()) m_editor->fileOpened(path);
    else ShowMessage(2);
}

bool Form1::readPhoneFile(const std::string& file)
{
    setBusy(true);
    try {
        BusyPointer busy;
        m_document.open(file);
    } catch (const image::EmptyPhoneFile&) {
        setBusy(false);
        ShowMessage(1);
        return false;
    } catch (const std::exception& error) {
        // The image and its path stay as they were, so a later save cannot land elsewhere.
        setBusy(false);
        showFailure(error);
        return false;
    }
    setBusy(false);
    return true;
}

QString Form1::versionText()
{
    const auto version = m_document.readVersion();
    if (!version) return m_texts.StatusBar1Str3;
    return decodeLanguageValue(*version, false, m_codePage);
}

void Form1::enableOutputsForKind()
{
    m_tonesTab->enableOutputsForKind();
    // The string outputs also wait for a checked row of their list.
    m_stringsTab->updateListMenu();
}

QString Form1::BrowseForFolder()
{
    // The prompt was the same in every language; a language file may now translate it.
    QString folder = m_dialogs->chooseFolder(fixedText("FolderPrompt", "请选择软件安装路径："));
    if (!folder.isEmpty() && !folder.endsWith('/')) folder += '/';
    return folder;
}

void Form1::Delay(double seconds)
{
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
}

void Form1::help_Click()
{
    const QString path = m_dataFolder + "/" + m_texts.HelpStr;
    if (m_texts.HelpStr.isEmpty() || !QFileInfo(path).isFile()) {
        ShowMessage(33);
        return;
    }
    // A desktop with no program for HTML still gets its help, in the workshop's own viewer.
    if (!desktopOpener()(QUrl::fromLocalFile(path))) showHelpViewer(this, path, text("HelpShownHere").arg(path));
}

void Form1::homepage_Click()
{
    const QString address = QString::fromLatin1(kHomePage);
    if (!desktopOpener()(QUrl(address)))
        m_dialogs->message(0, MessageKind::Information, m_texts.MsgTitle[3], text("HomePageNotOpened").arg(address));
}

bool Form1::mayLeaveImage()
{
    if (m_document.mayReplaceWithoutAsking()) return true;
    const bool bin = takesSRecordPatch();
    const Answer answer =
        m_dialogs->askYesNoCancel(m_texts.MsgTitle[7], bin ? text("BytesUnwrittenQuestion") : m_texts.MsgStr[35]);
    if (answer != Answer::Yes) return answer == Answer::No;
    return bin ? m_bytes->writeChangesAsPatch() : Saveaxf(false);
}

void Form1::closeEvent(QCloseEvent* event)
{
    if (!mayReplaceImage()) {
        event->ignore();
        return;
    }
    const ProfileFile settings(settingsPath().toStdString());
    saveShellSettings(m_settings, settings, m_tonesTab->currentFolder());
    settings.WriteSetting("Window", "Geometry", saveGeometry().toBase64().toStdString());
    settings.WriteSetting("Window", "Tab", std::to_string(m_tabs->currentIndex()));
    for (const QSplitter* panes : m_tabs->findChildren<QSplitter*>())
        settings.WriteSetting("Window", panes->objectName().toStdString(), panes->saveState().toBase64().toStdString());
    m_picturesTab->shutDown();
    m_aboutTab->stopScroller();
    event->accept();
}

void Form1::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void Form1::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) openPhoneFile(urls.first().toLocalFile());
}

}  // namespace zevran::app
