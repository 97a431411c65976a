// The installation tree and its kit.

#include <algorithm>
#include <vector>

#include "host/demonstration.h"
#include "platform/failure.h"
#include "platform/files/files.h"

namespace host {

namespace fs = std::filesystem;

void ensureFolder(const fs::path& folder) {
    if (platform::files::folderExists(folder))
        return;
    if (folder.has_parent_path())
        ensureFolder(folder.parent_path());
    platform::files::createFolder(folder);
}

void installKit(const fs::path& kit, const fs::path& root) {
    for (const char* part : {"Corvane", "QLNAdmin", "Service"}) {
        if (!platform::files::folderExists(kit / part))
            throw platform::makeFailure(platform::pathNotFound, (kit / part).string());
        ensureFolder(root / part);
        for (const auto& file : platform::files::listFiles(kit / part)) {
            // A program that runs from the tree keeps its own file: the name gets a new one.
            if (platform::files::fileExists(root / part / file.name))
                platform::files::deleteFile(root / part / file.name, true);
            platform::files::copyFile(kit / part / file.name, root / part / file.name);
            // Only the owner's own programs are run from here.
            const bool program =
                (fs::status(kit / part / file.name).permissions() & fs::perms::owner_exec) != fs::perms::none;
            fs::permissions(root / part / file.name, fs::perms::owner_read | fs::perms::owner_write |
                                                         (program ? fs::perms::owner_exec : fs::perms::none));
        }
    }
}

}  // namespace host
