#include "shell_settings.hpp"

#include "settings/profile_file.hpp"

#include "window/widget_helpers.hpp"

namespace zevran::app {

namespace {

QString read(const ProfileFile& settings, const char* section, const char* key)
{
    return window::fromUtf8(settings.ReadSetting(section, key, ""));
}

void write(const ProfileFile& settings, const char* section, const char* key, const QString& value)
{
    settings.WriteSetting(section, key, value.toUtf8().toStdString());
}

}  // namespace

void loadFolders(ShellSettings& folders, const ProfileFile& settings, const QString& programFolder)
{
    const std::pair<const char*, QString*> keys[]{
        {"mmf File Path", &folders.mmfFilePath},   {"Mobile File Path", &folders.MobileFilePath},
        {"Ring Save Path", &folders.RingSavePath}, {"Picture Save Path", &folders.PictureSavePath},
        {"S3 Save Path", &folders.S3SavePath},     {"Table Save Path", &folders.TableSavePath},
    };
    for (auto [key, slot] : keys) {
        *slot = read(settings, "File Path", key);
        if (slot->isEmpty()) *slot = programFolder;
    }
}

void saveShellSettings(const ShellSettings& folders, const ProfileFile& settings, const QString& treeFolder)
{
    write(settings, "File Path", "mmf File Path", treeFolder);
    write(settings, "File Path", "Ring Save Path", folders.RingSavePath);
    write(settings, "File Path", "Picture Save Path", folders.PictureSavePath);
    write(settings, "File Path", "S3 Save Path", folders.S3SavePath);
    write(settings, "File Path", "Table Save Path", folders.TableSavePath);
    write(settings, "File Path", "Mobile File Path", folders.MobileFilePath);
    write(settings, "Language", "Language", folders.Language);
}

}  // namespace zevran::app
