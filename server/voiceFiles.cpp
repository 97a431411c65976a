#include "server/voiceFiles.h"

#include <climits>
#include <optional>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "platform/files/files.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/host.h"
#include "platform/prompts.h"

namespace mdlUtility {

namespace {

using modLocalize::myLoadResString;
using namespace platform;

constexpr char moduleName[] = "mdlUtility";

// True for the name of one entry of a folder. The other system's separator is refused too: no stored name
// shall read as a path to anybody.
bool isBareName(const std::string& name) {
    constexpr std::string_view notInNames("/\\\0", 3);
    return !name.empty() && name != "." && name != ".." && name.size() <= NAME_MAX &&
           name.find_first_of(notInNames) == std::string::npos;
}

// The database, its template, its backups and what the engine keeps beside them: nothing that is chosen here
// may take their place.
bool isOfTheDatabase(const std::string& name) {
    const std::string folded = platform::foldCase(name);
    return folded.starts_with("qlndb") && folded.find(".mdb") != std::string::npos;
}

// Also when one of them is reached by way of a link.
bool isSameFolder(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code ignored;
    // Required: compared without case, as the service finds its folder, though another folder could bear such
    // a name here.
    return platform::foldCase(a.string()) == platform::foldCase(b.string()) ||
           std::filesystem::equivalent(a, b, ignored);
}

enum class Clash { overwrite, rename, cancel };

Clash askAboutClash(const std::string& name) {
    const BoxAnswer answer = prompts().messageBox(
        {myLoadResString(1263) + name + myLoadResString(1264) + "\n\n" + myLoadResString(1265),
         myLoadResString(1266), BoxIcon::question, BoxButtons::yesNoCancel});
    if (answer == BoxAnswer::cancel)
        return Clash::cancel;
    if (answer == BoxAnswer::no)
        return Clash::rename;
    const BoxAnswer sure = prompts().messageBox(
        {myLoadResString(1269) + name + "\n" + myLoadResString(1270) + "\n\n" + myLoadResString(1268),
         myLoadResString(1267), BoxIcon::question, BoxButtons::yesNo});
    return sure == BoxAnswer::yes ? Clash::overwrite : Clash::rename;
}

// The name under which the file goes into the folder; nothing when the administrator gives up. A name that
// is none of a file is asked for anew.
std::optional<std::string> settleName(const std::filesystem::path& folder, std::string name) {
    for (;;) {
        if (isBareName(name) && !isOfTheDatabase(name)) {
            if (!files::entryExists(folder / name))
                return name;
            const Clash clash = askAboutClash(name);
            if (clash == Clash::overwrite)
                return name;
            if (clash == Clash::cancel)
                return std::nullopt;
        }
        const std::optional<std::string> answer =
            prompts().inputBox(myLoadResString(1271), myLoadResString(1272), name);
        if (!answer || answer->empty())
            return std::nullopt;
        name = *answer;
    }
}

}  // namespace

std::filesystem::path databaseFolder() {
    return program::installationRoot() / "Database";
}

std::string copyFileToDatabaseDirectory(const std::filesystem::path& path) {
    return core::procedure(moduleName, "copyFileToDatabaseDirectory", std::string(),
                           [&](core::Frame& frame, std::string& stored) {
        if (!files::fileExists(path))
            return;
        const std::filesystem::path folder = databaseFolder();
        const std::string name = path.filename().string();
        if (isSameFolder(path.parent_path(), folder) && !isOfTheDatabase(name)) {
            stored = name;
            return;
        }
        const std::optional<std::string> settled = settleName(folder, name);
        if (!settled)
            return;
        frame.step([&] { files::copyFile(path, folder / *settled); });
        stored = *settled;
    });
}

}  // namespace mdlUtility
