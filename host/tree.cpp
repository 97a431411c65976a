#include "host/tree.h"

#include "host/demonstration.h"
#include "host/voiceFile.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr char consoleShortcut[] =
    "[Desktop Entry]\n"
    "Type=Application\n"
    "Name=Quillon Service Administration\n"
    "Exec=";

// Stands as long as a host is being made; packaging/QLNAdmin knows it too.
fs::path unfinished(const fs::path& root) {
    return root / "Host" / "unfinished";
}

// A server where the service is installed: its running files are copies of the kit's, and its log is there.
void installService(const fs::path& service, const fs::path& log) {
    for (const auto& [kitForm, runningForm] :
         {std::pair{"HbQlnSvc.ex_", "HbQlnSvc.exe"}, {"HbQlnSvcRes_ENU.dl_", "HbQlnSvcRes_ENU.dll"}})
        platform::files::copyFile(service / kitForm, service / runningForm);
    fs::permissions(service / "HbQlnSvc.exe", fs::perms::owner_all);
    platform::files::writeFile(log, "");
}

}  // namespace

fs::path beginTree(const fs::path& folder) {
    const fs::path root = fs::absolute(folder).lexically_normal();
    platform::host::setFolder(root / "Host");
    const fs::path registry = platform::host::registryFile();
    if (!platform::files::fileExists(unfinished(root)))
        for (const fs::path& file : {registry, root / "Database" / "QLNDB.MDB"})
            if (platform::files::fileExists(file))
                throw platform::makeFailure(platform::fileAlreadyExists, file.string());
    ensureFolder(root / "Host");
    platform::files::writeFile(unfinished(root), "");
    if (platform::files::fileExists(registry))
        platform::files::deleteFile(registry, true);
    return root;
}

void finishTree(const fs::path& root) {
    platform::files::deleteFile(unfinished(root), true);
}

void fillTree(const fs::path& root, const fs::path& kit, bool serviceInstalled) {
    const fs::path serviceLog = root / "Service" / "HbQlnSvc.log";
    for (const fs::path& part :
         {root / "Host", platform::host::menuFolder() / "Corvane", platform::host::eventLogsFolder(),
          platform::host::servicesFolder(), root / "QLNAdmin", root / "Service", root / "Database"})
        ensureFolder(part);
    if (!kit.empty()) {
        installKit(kit, root);
        if (serviceInstalled)
            installService(root / "Service", serviceLog);
    }
    createTemplateDatabase(root / "Database" / "QLNDB_FRESH.MDB", serviceLog);
    platform::files::writeFile(root / "Database" / "QLN_Default_ENU.wav", defaultVoiceFile());
}

void addShortcut(const fs::path& root) {
    platform::files::writeFile(
        platform::host::menuFolder() / "Corvane" / "Quillon Service Administration.desktop",
        consoleShortcut + (root / "QLNAdmin" / "QLNAdmin").string() + "\n");
}

}  // namespace host
