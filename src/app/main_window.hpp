// The workshop's one window: menus, tool bar, status bar and the five tabs. It owns
// the life cycle (start-up, opening and saving the phone file, shut-down), the
// settings and the language; each tab owns its own controls and sees the window only
// as its TabHost.
#pragma once

#include "dialogs.hpp"
#include "settings/program_folder.hpp"
#include "shell_settings.hpp"
#include "workshop_texts.hpp"

#include "image/firmware_image.hpp"
#include "image/patch_writer.hpp"
#include "window/tab_host.hpp"

#include <QMainWindow>
#include <array>
#include <memory>
#include <vector>

class QAction;
class QFrame;
class QLabel;
class QMenu;
class QTabWidget;
class QToolBar;

namespace zevran::tones {
class TonesTab;
}
namespace zevran::strings {
class StringsTab;
}
namespace zevran::pictures {
class PicturesTab;
}
namespace zevran::image {
class ConverterTab;
}

namespace zevran::app {

class AboutTab;
class BytesLink;
class EditorCommands;

class Form1 : public QMainWindow, public window::TabHost {
    Q_OBJECT
public:
    // `dialogs` answers every dialog; the Qt dialogs when null. A folder alone is portable.
    explicit Form1(const QString& programFolder, std::unique_ptr<Dialogs> dialogs = nullptr, QWidget* parent = nullptr);
    explicit Form1(const ProgramFolders& folders, std::unique_ptr<Dialogs> dialogs = nullptr,
                   QWidget* parent = nullptr);
    ~Form1() override;

    // Start-up: settings, language menu and language, folders, tabs 1 and 2 disabled.
    void LoadSettings();

    void menuopen_Click();
    // Opens a phone file as if it had been chosen in the Open dialog, once the changes
    // of the open image are saved or let go.
    void openPhoneFile(const QString& path);
    // The one guard of every replacement of the open image and of closing: false while a
    // command runs, or when the user cancels the save question (or the save fails).
    bool mayReplaceImage();
    // Writes the image back over the phone file; false (with a message) when it fails.
    bool Saveaxf(bool showDone);
    // The one question before the image is closed or replaced while it holds changes
    // that are neither saved ("asf") nor written as a patch ("bin"): Yes saves or writes
    // them, No drops them. False when the user stays (Cancel, or the save failed).
    bool mayLeaveImage();
    // Opens `file` into the document; false (the failure shown) when it was not read.
    bool readPhoneFile(const std::string& file);

    // What the tabs see of the window (image/tab_host.hpp).
    image::PhoneDocument& document() override { return m_document; }
    ShellSettings& settings() override { return m_settings; }
    Dialogs& dialogs() override { return *m_dialogs; }
    const QString& dataFolder() const override { return m_dataFolder; }
    QString runtimeFolder() const override { return QString::fromStdString(m_folders.runtimeFolder); }
    std::string codePage() const override { return m_codePage; }
    QString filter(int number) const override;
    void ShowMessage(int code) override;
    void showMessageWith(int code, const QString& detail) override;
    void showError(const QString& text) override;
    QString failureText(const std::exception& error) const override;
    void showInformation(const QString& text) override;
    const window::InterfaceTexts& texts() const override { return m_texts; }
    QString text(std::string_view key) const override { return m_workshopTexts.text(key); }
    QString fixedText(std::string_view key, std::string_view designText) const override
    {
        return m_workshopTexts.fixedText(key, designText);
    }
    bool mayClose() const override { return m_mayClose; }
    void setMayClose(bool mayClose) override { m_mayClose = mayClose; }
    QString BrowseForFolder() override;
    void writeSRecordPatch(const std::vector<image::Region>& regions) override;
    QString chooseSRecordPatchPath() override;
    bool writeSRecordPatchTo(const QString& path, const std::vector<image::Region>& regions) override;
    void patchInImage(const std::vector<image::Region>& regions, bool showDone = true) override;

    // Waits while the window goes on handling its events.
    void Delay(double seconds);

    void languagNum_Click(int index);
    void help_Click();
    void homepage_Click();

    QString settingsPath() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    void buildToolBar();
    void buildStatusBar();
    // Hands each tab the window, its pop-up menus and its status panel.
    void attachTabs();
    void buildTabs();
    void BuildLanguageMenu();
    // Applies the language file `name` of the program folder's language folder.
    void applyLanguage(const QString& name);
    // The workshop's own texts of the window and every tab, after a language is applied.
    void applyWorkshopTexts();
    QAction* addLanguageItem(int index, const QString& caption);
    void setBusy(bool busy);
    void fitIntoScreen();
    void enableOutputsForKind();
    QString versionText();

    ProgramFolders m_folders;
    QString m_dataFolder;
    std::unique_ptr<Dialogs> m_dialogs;
    image::PhoneDocument m_document;
    window::InterfaceTexts m_texts;
    WorkshopTexts m_workshopTexts;
    ShellSettings m_settings;
    std::string m_codePage;
    bool m_mayClose = true;
    QString m_openFileName;  // the open phone file's name and version, as the status bar shows them
    QString m_openVersion;
    QMenu* m_languageMenu = nullptr;
    std::vector<QAction*> m_languageItems;
    QTabWidget* m_tabs = nullptr;
    QToolBar* m_toolBar = nullptr;
    QAction* m_openTool = nullptr;
    QAction* m_save = nullptr;
    QAction* m_exitTool = nullptr;
    std::array<QMenu*, 5> m_popups{};         // menufile1..5, filled by the tabs
    std::array<QLabel*, 7> m_statusPanels{};  // StatusBar1Panel1..7
    QFrame* m_toneDetailsLine = nullptr;      // the line before panel 2, shown with it
    tones::TonesTab* m_tonesTab = nullptr;
    strings::StringsTab* m_stringsTab = nullptr;
    pictures::PicturesTab* m_picturesTab = nullptr;
    image::ConverterTab* m_converterTab = nullptr;
    AboutTab* m_aboutTab = nullptr;
    EditorCommands* m_editor = nullptr;  // compare, undo and redo, recent files, the title
    BytesLink* m_bytes = nullptr;        // the "Bytes" tab and its outputs
};

}  // namespace zevran::app
