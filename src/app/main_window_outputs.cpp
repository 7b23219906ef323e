// The window's one message sink and the outputs every edit ends in: numbered messages
// and failures in the current language, the save of an "asf" image, an S-record patch
// for a "bin" image, and regions laid into the image as one undo step.
#include "main_window.hpp"

#include "editor_commands.hpp"
#include "failure_texts.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/messages.hpp"
#include "image/output_file.hpp"
#include "image/phone_file.hpp"
#include "window/widget_helpers.hpp"

namespace zevran::app {

using window::BusyPointer;
using window::fromUtf8;

void Form1::ShowMessage(int code) { showMessageWith(code, QString()); }

void Form1::showMessageWith(int code, const QString& detail)
{
    const auto style = image::messageStyle(code);
    if (!style) return;
    const MessageKind kind = style->icon == image::MessageIcon::Stop          ? MessageKind::Critical
                             : style->icon == image::MessageIcon::Exclamation ? MessageKind::Warning
                                                                              : MessageKind::Information;
    QString text = m_texts.MsgStr[static_cast<std::size_t>(code)];
    if (!detail.isEmpty()) text += (text.isEmpty() ? "" : "\n") + detail;
    m_dialogs->message(code, kind, m_texts.MsgTitle[static_cast<std::size_t>(style->titleNumber)], text);
}

QString Form1::failureText(const std::exception& error) const { return app::failureText(m_workshopTexts, error); }

void Form1::showError(const QString& text) { m_dialogs->message(0, MessageKind::Critical, m_texts.MsgTitle[1], text); }

void Form1::showInformation(const QString& text)
{
    const auto style = image::messageStyle(10);
    m_dialogs->message(0, MessageKind::Information,
                       m_texts.MsgTitle[static_cast<std::size_t>(style ? style->titleNumber : 2)], text);
}

bool Form1::Saveaxf(bool showDone)
{
    try {
        BusyPointer busy;
        m_editor->history().save();
    } catch (const std::exception& error) {
        // The phone file is untouched and Save stays enabled, so the save can be tried again.
        showFailure(error);
        return false;
    }
    if (showDone) ShowMessage(21);
    return true;
}

void Form1::writeSRecordPatch(const std::vector<image::Region>& regions)
{
    if (!takesSRecordPatch() || regions.empty()) return;
    const QString path = chooseSRecordPatchPath();
    if (!path.isEmpty()) writeSRecordPatchTo(path, regions);
}

QString Form1::chooseSRecordPatchPath()
{
    QString path = m_dialogs->saveFile(m_settings.S3SavePath, filter(1), 2);
    if (!path.isEmpty()) m_settings.S3SavePath = fromUtf8(image::FolderOf(path.toStdString()));
    return path;
}

bool Form1::writeSRecordPatchTo(const QString& path, const std::vector<image::Region>& regions)
{
    if (!takesSRecordPatch() || regions.empty()) return false;
    try {
        BusyPointer busy;
        image::writeEditsAsPatch(m_document, path.toStdString(), regions);
    } catch (const std::exception& error) {
        showFailure(error);
        return false;
    }
    ShowMessage(10);
    return true;
}

void Form1::patchInImage(const std::vector<image::Region>& regions, bool showDone)
{
    if (!takesInImagePatch()) return;
    bool whole = true;
    try {
        // One undo step; Save follows from it, even for a region cut at the image's end.
        whole = m_editor->history().patch(regions);
    } catch (const std::exception& error) {
        showFailure(error);
        return;
    }
    if (!whole) {
        showError(text("PatchPastEnd").arg(m_document.bytes().size()));
        return;
    }
    if (showDone) ShowMessage(13);
}

}  // namespace zevran::app
