// The installation tree of a new host, demonstration or real: folders, program files, template, shortcut.
#pragma once

#include <filesystem>

namespace host {

// The absolute path of the tree, whose host becomes the present one, and is unfinished until finishTree: one
// that was cut short is made anew. Raises platform::Failure, 58 for a folder that holds a host or a
// configuration already.
std::filesystem::path beginTree(const std::filesystem::path& folder);
void finishTree(const std::filesystem::path& root);
// The tree's files; `kit` as in installKit, empty for none. With `serviceInstalled` the service's running
// files are there too. Raises platform::Failure.
void fillTree(const std::filesystem::path& root, const std::filesystem::path& kit, bool serviceInstalled);
// The console's entry in the menu.
void addShortcut(const std::filesystem::path& root);

}  // namespace host
