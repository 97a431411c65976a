#include "server/serviceFiles.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/prompts.h"

using modLocalize::myLoadResString;

namespace files = platform::files;

namespace mdlUtility {

namespace {

using Path = std::filesystem::path;
using FileObject = std::optional<Path>;

// The running form of a file and the kit's.
constexpr std::array<std::pair<const char*, const char*>, 2> copies{{
    {serviceProgram, deliveredProgram},
    {"HbQlnSvcRes_ENU.dll", "HbQlnSvcRes_ENU.dl_"},
}};

FileObject getFile(const Path& path) {
    if (!files::fileExists(path))
        throw platform::makeFailure(platform::fileNotFound, path.string());
    return path;
}

const Path& pathOf(const FileObject& file) {
    if (!file)
        throw platform::makeFailure(platform::objectNotSet);
    return *file;
}

void flipReadOnly(const FileObject& file) {
    const Path& path = pathOf(file);
    files::setReadOnly(path, !files::isReadOnly(path));
}

// Makes a read-only target writable. `startAgain` turns true in a step that is refused, and ends it.
void clearReadOnly(core::Frame& frame, const Path& target, const Path& delivered, const bool& startAgain) {
    FileObject file;
    bool readOnly = false;
    frame.step([&] { file = getFile(target); });
    frame.step([&] { readOnly = files::isReadOnly(pathOf(file)); });
    if (!readOnly)
        return;
    core::gLog().log(
        target.filename().string() + " found to be read-only.  Removing the read-only flag from this file.",
        core::logWarning, frame.tag());
    // The kit's bit is flipped without a test, so a kit file that was writable becomes read-only; it stays
    // so.
    FileObject kitFile;
    frame.step([&] { flipReadOnly(file); });
    if (startAgain)
        return;
    frame.step([&] { kitFile = getFile(delivered); });
    frame.step([&] { flipReadOnly(kitFile); });
}

}  // namespace

Path serviceFolder() {
    return platform::program::installationRoot() / "Service";
}

void copyQLNService() {
    core::procedure("mdlUtility", "copyQLNService", [](core::Frame& frame) {
        Path target;
        bool startAgain = false;
        // Without a limit of its own: the eleventh failure of the call ends it.
        frame.on(platform::permissionDenied, [&](const platform::Failure&) {
            core::gLog().log("Cannot copy over file: " + target.string() +
                                 ".  Please make sure this file is not marked read-only.",
                             core::logError, frame.tag());
            platform::prompts().messageBox({myLoadResString(1299) + target.string() + myLoadResString(1300),
                                            myLoadResString(1301), platform::BoxIcon::critical});
            startAgain = true;
        });
        do {
            startAgain = false;
            for (const auto& [running, delivered] : copies) {
                target = serviceFolder() / running;
                const Path kitFile = serviceFolder() / delivered;
                clearReadOnly(frame, target, kitFile, startAgain);
                if (!startAgain)
                    frame.step([&, from = kitFile] { files::copyFile(from, target); });
                if (startAgain)
                    break;
            }
        } while (startAgain);
    });
}

}  // namespace mdlUtility
