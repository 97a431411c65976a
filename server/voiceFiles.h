// The recordings that notifications play: files of the Database folder, which events name without a folder.
#pragma once

#include <filesystem>
#include <string>

namespace mdlUtility {

// The folder Database of the installation.
std::filesystem::path databaseFolder();

// Brings a chosen file into the Database folder and settles a clash of names with the administrator. The
// bare name to store; empty when nothing is to change: the file is gone, or the administrator cancelled. A
// copy that fails is logged, and its name is returned all the same; an old file of that name is then whole.
// Nothing outside the folder is ever written.
std::string copyFileToDatabaseDirectory(const std::filesystem::path& path);

}  // namespace mdlUtility
