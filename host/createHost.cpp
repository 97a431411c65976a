#include "host/demonstration.h"
#include "host/directory.h"
#include "host/voiceFile.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/services/accounts.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr char consoleShortcut[] =
    "[Desktop Entry]\n"
    "Type=Application\n"
    "Name=Quillon Service Administration\n"
    "Exec=";

// A server where the service is installed: its running files are copies of the kit's, and its log is there.
void installService(const fs::path& service, const fs::path& log) {
    for (const auto& [kitForm, runningForm] :
         {std::pair{"HbQlnSvc.ex_", "HbQlnSvc.exe"}, {"HbQlnSvcRes_ENU.dl_", "HbQlnSvcRes_ENU.dll"}})
        platform::files::copyFile(service / kitForm, service / runningForm);
    fs::permissions(service / "HbQlnSvc.exe", fs::perms::owner_all);
    platform::files::writeFile(log, "");
}

}  // namespace

void createHost(const fs::path& folder, const HostOptions& options) {
    const fs::path root = fs::absolute(folder).lexically_normal();
    const fs::path hostFolder = root / "Host";
    const fs::path serviceLog = root / "Service" / "HbQlnSvc.log";
    platform::host::setFolder(hostFolder);
    if (platform::files::fileExists(platform::host::registryFile()))
        throw platform::makeFailure(platform::fileAlreadyExists, platform::host::registryFile().string());

    for (const fs::path& part :
         {hostFolder, platform::host::menuFolder() / "Corvane", platform::host::eventLogsFolder(),
          platform::host::servicesFolder(), root / "QLNAdmin", root / "Service", root / "Database"})
        ensureFolder(part);
    if (!options.kit.empty()) {
        installKit(options.kit, root);
        if (options.serviceInstalled)
            installService(root / "Service", serviceLog);
    }
    createTemplateDatabase(root / "Database" / "QLNDB_FRESH.MDB", serviceLog);
    platform::files::writeFile(root / "Database" / "QLN_Default_ENU.wav", defaultVoiceFile());
    createDirectory(platform::host::directoryDatabase(), options.layout, [&](DirectoryWriter& writer) {
        fillDemonstrationDirectory(writer, options.subscribers, options.distributionLists);
    });
    platform::setAccountPassword(demonstrationAccount, demonstrationPassword);
    fillDemonstrationEvents(options.inUse);
    if (options.inUse)
        fillDemonstrationNotifications(root / "Database");
    platform::files::writeFile(
        platform::host::menuFolder() / "Corvane" / "Quillon Service Administration.desktop",
        consoleShortcut + (root / "QLNAdmin" / "QLNAdmin").string() + "\n");
    if (options.legacyNotifier)
        fillLegacyNotifier(root, options.kit);
    // Last, because a folder with a registry is a host: one that was cut short can be made again.
    fillDemonstrationRegistry(root, options);
}

}  // namespace host
