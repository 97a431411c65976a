#include <cstdio>
#include <filesystem>
#include <vector>

#include "host/commands.h"
#include "host/provision.h"
#include "platform/machine/host.h"

namespace qlnhost {

namespace {

// The kit stands beside this tool, unless another is named.
std::filesystem::path kitFolder(Arguments& arguments) {
    return arguments.option("--kit", (platform::program::folder() / "kit").string());
}

host::HostOptions takeOptions(Arguments& arguments) {
    constexpr unsigned long mostRows = 1'000'000;
    host::HostOptions options;
    const std::string version = arguments.option("--version", "4");
    if (version != "4" && version != "3.1")
        throw UsageError("--version is 4 or 3.1, not '" + version + "'");
    options.corvaneMajor = version == "4" ? 4 : 3;
    const std::string layout = arguments.option("--layout", "tables");
    if (layout != "tables" && layout != "views")
        throw UsageError("--layout is tables or views, not '" + layout + "'");
    options.layout = layout == "views" ? host::DirectoryLayout::views : host::DirectoryLayout::tables;
    options.serviceInstalled = !arguments.flag("--fresh");
    // Before the console's first run nobody can have told the service anything.
    options.inUse = !arguments.flag("--empty") && options.serviceInstalled;
    options.legacyNotifier = !arguments.flag("--no-legacy");
    options.snmpAgent = arguments.flag("--snmp");
    options.failoverPrimary = arguments.flag("--failover");
    options.subscribers = static_cast<unsigned>(
        parseNumber(arguments.option("--subscribers", "240"), mostRows, "--subscribers"));
    options.distributionLists =
        static_cast<unsigned>(parseNumber(arguments.option("--lists", "24"), mostRows, "--lists"));
    options.kit = kitFolder(arguments);
    return options;
}

// What is at work when the console comes to the server. The legacy notifier is what the console's import has
// to deal with.
bool startServices(const host::HostOptions& options, const std::filesystem::path& root) {
    std::vector<const char*> names;
    if (options.inUse)
        names = {"TsHubMgr", "HbQlnSvc"};
    if (options.legacyNotifier)
        names.push_back("TsKesnSvr");
    for (const char* name : names) {
        if (!startService(name))
            return false;
        std::printf("The service %s runs; it ends with: qlnhost --host %s services stop %s\n", name,
                    root.c_str(), name);
    }
    return true;
}

}  // namespace

std::string takeTreeFolder(Arguments& arguments) {
    std::string folder = arguments.take("DIR");
    // The registry and the shortcuts hold command lines with this name between quotes.
    if (folder.find_first_of("\"'\n\r") != std::string::npos)
        throw UsageError("a host's folder has neither quotes nor line ends in its name");
    return folder;
}

int createCommand(Arguments& arguments) {
    if (arguments.flag("--this-machine"))
        return createMachineCommand(arguments, kitFolder(arguments));
    const host::HostOptions options = takeOptions(arguments);
    const std::string folder = takeTreeFolder(arguments);
    arguments.finish();
    host::createHost(folder, options);
    const std::filesystem::path root = std::filesystem::absolute(folder).lexically_normal();
    std::printf("Made a host of version %s in %s.\n", options.corvaneMajor == 4 ? "4" : "3.1", root.c_str());
    std::printf("The console: %s\n", (root / "QLNAdmin" / "QLNAdmin").c_str());
    std::printf("Account of the host's main service: %.*s, password %.*s\n",
                static_cast<int>(host::demonstrationAccount.size()), host::demonstrationAccount.data(),
                static_cast<int>(host::demonstrationPassword.size()), host::demonstrationPassword.data());
    if (!startServices(options, root))
        return 1;
    // What was in the logs before the service's first start is no news to it.
    if (options.inUse)
        host::writeDemonstrationNews();
    return 0;
}

int updateCommand(Arguments& arguments) {
    const std::filesystem::path kit = kitFolder(arguments);
    const std::filesystem::path root = arguments.take("DIR");
    arguments.finish();
    if (!std::filesystem::exists(root / "Host" / "registry.reg"))
        throw UsageError(root.string() + " holds no host");
    host::installKit(kit, root);
    return 0;
}

}  // namespace qlnhost
