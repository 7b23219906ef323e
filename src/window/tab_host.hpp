// What a tab sees of the window it sits in: the image, the remembered folders, the
// dialogs and messages, the texts of the current language and the two outputs every
// edit ends in. The tabs know the window only through this, so the window's folder
// links against the tabs and never the other way round.
#pragma once

#include "image/firmware_image.hpp"
#include "image/phone_document.hpp"
#include "window/interface_texts.hpp"
#include "image/patch_writer.hpp"
#include "window/window_dialogs.hpp"

#include <QString>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::window {

// The folders and language the workshop remembers in zevran.ini between runs.
struct ShellSettings {
    QString Language;  // the language file's name, ".ini" included (bare on a first run)
    QString mmfFilePath;
    QString MobileFilePath;
    QString RingSavePath;
    QString PictureSavePath;
    QString S3SavePath;
    QString TableSavePath;
};

// Where a tab's messages go: a numbered message of the language file, or a job's typed
// failure, which the window renders through the language file's keys.
class MessageSink {
public:
    virtual ~MessageSink() = default;
    // Numbered message `code` with its title and text from the language file.
    virtual void ShowMessage(int code) = 0;
    // The same, with `detail` (what failed and where) on a line under its text.
    virtual void showMessageWith(int code, const QString& detail) = 0;
    // A failure of a job in the window's language: what failed and where.
    virtual QString failureText(const std::exception& error) const = 0;
    void showFailure(const std::exception& error) { showError(failureText(error)); }
    // A failure the numbered messages do not cover: its text says what and where.
    virtual void showError(const QString& text) = 0;
    // A result the numbered messages do not cover, under the title of message 10.
    virtual void showInformation(const QString& text) = 0;
};

// The texts of the current language.
class WindowTexts {
public:
    virtual ~WindowTexts() = default;
    // The classic texts of the current language.
    virtual const InterfaceTexts& texts() const = 0;
    // A text of the workshop's own keys (section [Zevran] of the language file), with
    // the shipped English text, then the built-in one, where the language file lacks it.
    virtual QString text(std::string_view key) const = 0;
    // A text the classic program shows the same in every language (`designText`, UTF-8):
    // it stays so unless the language file's [Zevran] section gives `key`.
    virtual QString fixedText(std::string_view key, std::string_view designText) const = 0;
    // Dialog filter `number` of the language file, in Qt's form.
    virtual QString filter(int number) const = 0;
};

// The two outputs every edit ends in: an S-record patch file chosen by the user
// (message 10), or the regions copied into the image (Save enabled, message 13 unless
// `showDone` is false, for an output that stopped part way).
class EditOutput {
public:
    virtual ~EditOutput() = default;
    virtual void writeSRecordPatch(const std::vector<image::Region>& regions) = 0;
    // The same in two steps, for an output that reads its rows only once the user has
    // chosen where they go: the path ("" when cancelled), then the file written there
    // (false when it was not: the failure is shown).
    virtual QString chooseSRecordPatchPath() = 0;
    virtual bool writeSRecordPatchTo(const QString& path, const std::vector<image::Region>& regions) = 0;
    virtual void patchInImage(const std::vector<image::Region>& regions, bool showDone = true) = 0;
};

// All a tab sees of the window: the document, the settings and dialogs, one message
// sink, the one output of edits, the texts.
class TabHost : public MessageSink, public WindowTexts, public EditOutput {
public:
    // The open phone file: its image, path and kind, and its changes since opened.
    virtual image::PhoneDocument& document() = 0;
    image::ImageState& imageState() { return document().state(); }
    virtual ShellSettings& settings() = 0;
    virtual Dialogs& dialogs() = 0;
    // The shipped data (16.dat, help, language files): the program folder when portable,
    // share/zevran when installed, where it is read-only.
    virtual const QString& dataFolder() const = 0;
    // Where preview pictures are written: the program folder when portable, the user's
    // runtime folder when installed (the shipped data is read-only there).
    virtual QString runtimeFolder() const = 0;
    // The single-byte code page of the handset's text ("Code Page" of zevran.ini).
    virtual std::string codePage() const = 0;

    // The window refuses to close while this is false: a command is running pending
    // events between the files it writes.
    virtual bool mayClose() const = 0;
    virtual void setMayClose(bool mayClose) = 0;

    // The folder chooser with its fixed prompt: a folder ending in "/", or "" on cancel.
    virtual QString BrowseForFolder() = 0;

    // The output that fits the opened phone file: an S-record patch for "bin", the
    // image itself for "asf"; neither for "other" or before a file is opened.
    bool takesSRecordPatch() { return document().takesSRecordPatch(); }
    bool takesInImagePatch() { return document().takesInImagePatch(); }
};

// Keeps the window from closing while a command runs, and restores the flag after.
class KeepWindowOpen {
public:
    explicit KeepWindowOpen(TabHost& host) : m_host(host), m_before(host.mayClose()) { m_host.setMayClose(false); }
    ~KeepWindowOpen() { m_host.setMayClose(m_before); }
    KeepWindowOpen(const KeepWindowOpen&) = delete;
    KeepWindowOpen& operator=(const KeepWindowOpen&) = delete;

private:
    TabHost& m_host;
    bool m_before;
};

}  // namespace zevran::window
