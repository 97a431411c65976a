#include "server/legacyShortcuts.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "core/classLog.h"
#include "core/procedure.h"
#include "platform/files/files.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/host.h"

namespace mdlUtility {

namespace {

constexpr char moduleName[] = "mdlUtility";
constexpr char legacyTool[] = "hubserver/kesn";

// What a shortcut starts: the command of the desktop entry, empty when the file is none.
std::string shortcutTarget(const std::filesystem::path& file) {
    constexpr std::uint64_t largestShortcut = 1u << 20;
    std::istringstream lines(platform::files::readFile(file, largestShortcut));
    bool inEntry = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('['))
            inEntry = line.starts_with("[Desktop Entry]");
        else if (inEntry && line.starts_with("Exec="))
            return line.substr(5);
    }
    return {};
}

// Menus were filled by installers of several ages, with either separator in the path.
bool startsLegacyTool(std::string target) {
    for (char& c : target) {
        c = c == '\\' ? '/' : platform::foldAscii(c);
    }
    return target.find(legacyTool) != std::string::npos;
}

}  // namespace

void removeKTNShortcuts() {
    core::procedure(moduleName, "removeKTNShortcuts", [](core::Frame& frame) {
        const std::filesystem::path folder = platform::host::menuFolder() / "Corvane";
        std::vector<platform::files::Entry> files;
        frame.step([&] {
            // A link there leads to somebody else's files.
            if (platform::files::isOwnFolder(folder.parent_path()) && platform::files::isOwnFolder(folder))
                files = platform::files::listFiles(folder);
        });
        for (const auto& file : files) {
            std::string target;
            frame.step([&] { target = shortcutTarget(folder / file.name); });
            if (!startsLegacyTool(target))
                continue;
            core::gLog().log("Found KTN Utility Shortcut: " + file.name + " - Deleting", core::logInfo,
                             frame.tag());
            frame.step([&] { platform::files::deleteFile(folder / file.name, true); });
            return;
        }
    });
}

}  // namespace mdlUtility
