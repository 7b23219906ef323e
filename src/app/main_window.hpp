// The workshop's one window: menus, tool bar, status bar and the five tabs. It owns
// the life cycle (start-up, opening and saving the phone file, shut-down), the
// settings and the language; each tab owns its own controls.
#pragma once

#include "dialogs.hpp"
#include "interface_texts.hpp"
#include "shell_settings.hpp"

#include "image/firmware_image.hpp"
#include "image/patch_writer.hpp"

#include <QMainWindow>
#include <memory>
#include <vector>

class QAction;
class QLabel;
class QMenu;
class QTabWidget;

namespace zevran::tones { class TonesTab; }
namespace zevran::strings { class StringsTab; }
namespace zevran::pictures { class PicturesTab; }
namespace zevran::image { class ConverterTab; }

namespace zevran::app {

class AboutTab;

class Form1 : public QMainWindow {
    Q_OBJECT
public:
    // `dialogs` answers every dialog; the Qt dialogs when null.
    explicit Form1(const QString& programFolder, std::unique_ptr<Dialogs> dialogs = nullptr, QWidget* parent = nullptr);
    ~Form1() override;

    // Start-up: settings, language menu and language, folders, tabs 1 and 2 disabled.
    void LoadSettings();

    void menuopen_Click();
    // Opens a phone file as if it had been chosen in the Open dialog.
    void openPhoneFile(const QString& path);
    // Writes the image back over the phone file; false (with a message) when it fails.
    bool Saveaxf(bool showDone);
    void ShowMessage(int code);
    // A failure the numbered messages do not cover: its text says what and where.
    void showError(const QString& text);

    // The two outputs every edit ends in: an S-record patch file chosen by the user
    // (message 10), or the regions copied into the image (Save enabled, message 13
    // unless `showDone` is false, for an output that stopped part way).
    void writeSRecordPatch(const std::vector<image::Region>& regions);
    void patchInImage(const std::vector<image::Region>& regions, bool showDone = true);
    // The output that fits the opened phone file: an S-record patch for "bin", the
    // image itself for "asf"; neither for "other" or before a file is opened.
    bool takesSRecordPatch() const { return m_image.FileKind == "bin"; }
    bool takesInImagePatch() const { return m_image.FileKind == "asf"; }

    // The folder chooser with its fixed prompt: a folder ending in "/", or "" on cancel.
    QString BrowseForFolder();
    // Waits while the window goes on handling its events.
    void Delay(double seconds);

    void languagNum_Click(int index);
    void help_Click();
    void homepage_Click();

    image::ImageState& imageState() { return m_image; }
    InterfaceTexts& texts() { return m_texts; }
    ShellSettings& settings() { return m_settings; }
    Dialogs& dialogs() { return *m_dialogs; }
    const QString& programFolder() const { return m_programFolder; }
    std::string codePage() const { return m_codePage; }
    QString settingsPath() const;
    QString filter(int number) const;
    bool mayClose = true;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    void buildToolBar();
    void buildStatusBar();
    void buildTabs();
    void BuildLanguageMenu();
    QAction* addLanguageItem(int index, const QString& caption);
    void setBusy(bool busy);
    void enableOutputsForKind();
    QString versionText();

    QString m_programFolder;
    std::unique_ptr<Dialogs> m_dialogs;
    image::ImageState m_image;
    InterfaceTexts m_texts;
    ShellSettings m_settings;
    std::string m_codePage;
    QMenu* m_languageMenu = nullptr;
    std::vector<QAction*> m_languageItems;
    QTabWidget* m_tabs = nullptr;
    QAction* m_save = nullptr;
    tones::TonesTab* m_tonesTab = nullptr;
    strings::StringsTab* m_stringsTab = nullptr;
    pictures::PicturesTab* m_picturesTab = nullptr;
    image::ConverterTab* m_converterTab = nullptr;
    AboutTab* m_aboutTab = nullptr;
};

}  // namespace zevran::app
