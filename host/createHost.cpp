#include "host/demonstration.h"
#include "host/directory.h"
#include "host/tree.h"
#include "platform/machine/host.h"
#include "platform/services/accounts.h"

namespace host {

void createHost(const std::filesystem::path& folder, const HostOptions& options) {
    const std::filesystem::path root = beginTree(folder);
    fillTree(root, options.kit, options.serviceInstalled);
    createDirectory(platform::host::directoryDatabase(), options.layout, [&](DirectoryWriter& writer) {
        fillDemonstrationDirectory(writer, options.subscribers, options.distributionLists);
    });
    platform::setAccountPassword(demonstrationAccount, demonstrationPassword);
    fillDemonstrationEvents(options.inUse);
    if (options.inUse)
        fillDemonstrationNotifications(root / "Database");
    addShortcut(root);
    if (options.legacyNotifier)
        fillLegacyNotifier(root, options.kit);
    fillDemonstrationRegistry(root, options);
    finishTree(root);
}

}  // namespace host
