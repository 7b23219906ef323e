// Reading and writing the folders and language the workshop remembers in zevran.ini.
#pragma once

#include "window/tab_host.hpp"

#include <QString>

namespace zevran::app {

class ProfileFile;
using window::ShellSettings;

// Reads every folder, each written back empty when missing; an empty folder becomes
// the program folder (not written until shut-down). The language is read before, by
// the start-up that builds the language menu from it.
void loadFolders(ShellSettings& folders, const ProfileFile& settings, const QString& programFolder);
// Writes the folders and then the language, in the order shut-down always has.
void saveShellSettings(const ShellSettings& folders, const ProfileFile& settings, const QString& treeFolder);

}  // namespace zevran::app
