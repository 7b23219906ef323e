// The folders and language the workshop remembers in zevran.ini between runs.
#pragma once

#include <QString>

namespace zevran::app {

class ProfileFile;

struct ShellSettings {
    QString Language;  // the language file's name, ".ini" included (bare on a first run)
    QString mmfFilePath;
    QString MobileFilePath;
    QString RingSavePath;
    QString PictureSavePath;
    QString S3SavePath;
    QString TableSavePath;

    // Reads every folder, each written back empty when missing; an empty folder
    // becomes the program folder (not written until shut-down). The language is read
    // before, by the start-up that builds the language menu from it.
    void loadFolders(const ProfileFile& settings, const QString& programFolder);
    // Writes the folders and then the language, in the order shut-down always has.
    void save(const ProfileFile& settings, const QString& treeFolder) const;
};

}  // namespace zevran::app
