#include "shell_settings.hpp"

#include "profile_file.hpp"

namespace zevran::app {

namespace {

QString read(const ProfileFile& settings, const char* section, const char* key)
{
    const std::string value = settings.ReadSetting(section, key, "");
    return QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()));
}

void write(const ProfileFile& settings, const char* section, const char* key, const QString& value)
{
    settings.WriteSetting(section, key, value.toUtf8().toStdString());
}

}  // namespace

void ShellSettings::loadFolders(const ProfileFile& settings, const QString& programFolder)
{
    for (auto [key, slot] : {std::pair{"mmf File Path", &mmfFilePath}, std::pair{"Mobile File Path", &MobileFilePath},
                             std::pair{"Ring Save Path", &RingSavePath}, std::pair{"Picture Save Path", &PictureSavePath},
                             std::pair{"S3 Save Path", &S3SavePath}, std::pair{"Table Save Path", &TableSavePath}}) {
        *slot = read(settings, "File Path", key);
        if (slot->isEmpty()) *slot = programFolder;
    }
}

void ShellSettings::save(const ProfileFile& settings, const QString& treeFolder) const
{
    write(settings, "File Path", "mmf File Path", treeFolder);
    write(settings, "File Path", "Ring Save Path", RingSavePath);
    write(settings, "File Path", "Picture Save Path", PictureSavePath);
    write(settings, "File Path", "S3 Save Path", S3SavePath);
    write(settings, "File Path", "Table Save Path", TableSavePath);
    write(settings, "File Path", "Mobile File Path", MobileFilePath);
    write(settings, "Language", "Language", Language);
}

}  // namespace zevran::app
