// The registry of the demonstration host.

#include <array>
#include <string>
#include <string_view>

#include "host/demonstration.h"
#include "platform/registry/registry.h"
#include "platform/services/serviceManager.h"

namespace host {

namespace {

constexpr char machine[] = "HKEY_LOCAL_MACHINE\\";
constexpr char services[] = "SYSTEM\\CurrentControlSet\\Services\\";

constexpr std::array<std::string_view, 34> applicationSources{"ArchiveWriter",
                                                              "BackupAgent",
                                                              "CertEnroll",
                                                              "ClusterNode",
                                                              "DirectoryAgent",
                                                              "DiskQuota",
                                                              "EventLogger",
                                                              "FileReplica",
                                                              "GroupPolicy",
                                                              "LoadMonitor",
                                                              "MailRelay",
                                                              "MeridaneCorvane_ArchiveMgr",
                                                              "MeridaneCorvane_AudioText",
                                                              "MeridaneCorvane_BridgeSrv",
                                                              "MeridaneCorvane_CallMgr",
                                                              "MeridaneCorvane_DirSync",
                                                              "MeridaneCorvane_DoorBell",
                                                              "MeridaneCorvane_ExtensionMgr",
                                                              "MeridaneCorvane_FaxQueue",
                                                              "MeridaneCorvane_License",
                                                              "MeridaneCorvane_MailRouter",
                                                              "MeridaneCorvane_MediaSrv",
                                                              "MeridaneCorvane_MessageStore",
                                                              "MeridaneCorvane_NodeMgr",
                                                              "MeridaneCorvane_Notifier",
                                                              "MeridaneCorvane_Reports",
                                                              "MeridaneCorvane_SpeechSrv",
                                                              "MeridaneCorvane_SwitchLink",
                                                              "MeridaneCorvane_Telephony",
                                                              "MeridaneCorvane_WebInbox",
                                                              "PerfCounters",
                                                              "PolicyAgent",
                                                              "SqlDirectory",
                                                              "UserProfiles"};

constexpr std::array<std::string_view, 22> systemSources{
    "Browser",        "ClockSync",  "DnsCache",   "DhcpClient", "Disk",         "FaultTolerance",
    "Firewall",       "Kernel",     "NetBridge",  "NetLogon",   "Ntp",          "Parport",
    "PlugPlay",       "PowerUnit",  "PrintSpool", "Redirector", "RemoteAccess", "SerialPort",
    "ServiceManager", "StorageBus", "TapeDrive",  "VolumeSnap"};

// Sources that registered no message file; a console lists none of them.
constexpr std::array<std::string_view, 2> silentSources{"OldPrinter", "TrialPackage"};

void setValue(const std::string& path, std::string_view name, platform::RegistryValue value) {
    platform::registry().createKey(machine + path);
    platform::registry().setValue(machine + path, name, std::move(value));
}

void addSource(const std::string& log, std::string_view source, const std::string& messageFile,
               bool categoriesOnly = false) {
    const std::string path = std::string(services) + "EventLog\\" + log + "\\" + std::string(source);
    setValue(path, categoriesOnly ? "CategoryMessageFile" : "EventMessageFile", messageFile);
    setValue(path, "TypesSupported", 7u);
}

void addOwnSource(std::string_view source, const std::string& messageFile) {
    const std::string path = std::string(services) + "EventLog\\Application\\" + std::string(source);
    addSource("Application", source, messageFile);
    setValue(path, "CategoryMessageFile", messageFile);
    setValue(path, "CategoryCount", 2u);
}

void addService(std::string_view name, const std::string& program) {
    constexpr std::uint32_t startAutomatically = 2;
    constexpr std::uint32_t ownProcess = 16;
    const std::string path = services + std::string(name);
    setValue(path, "ImagePath", "\"" + program + "\"");
    setValue(path, "Type", ownProcess);
    const platform::ServiceManager manager(platform::managerExecute);
    platform::Service service(manager, name, platform::serviceChangeConfig);
    platform::ServiceConfiguration configuration;
    configuration.startType = startAutomatically;
    configuration.account = demonstrationAccount;
    configuration.password = demonstrationPassword;
    service.changeConfiguration(configuration);
}

}  // namespace

void fillDemonstrationRegistry(const std::filesystem::path& root, const HostOptions& options) {
    const auto below = [&](const char* path) { return (root / path).string(); };
    setValue("SOFTWARE\\Tessaly", "Version Number", options.corvaneMajor >= 4 ? 0x00040000u : 0x00030001u);
    setValue("SOFTWARE\\Tessaly", "Build Number", 0x00010000u);
    setValue("SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service", "DatabasePath",
             below("Database"));
    if (options.failoverPrimary)
        setValue("SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0", "Primary", 1u);
    if (options.snmpAgent)
        setValue(std::string(services) + "SNMP\\Parameters\\ExtensionAgents", "MeridaneCorvane",
                 std::string("SOFTWARE\\Tessaly\\SnmpAgent"));

    addService("TsHubMgr", below("Corvane/TsHubMgr.exe"));
    for (const std::string_view source : applicationSources)
        // One source has categories but no messages of its own, as some have.
        addSource("Application", source, below("Corvane/messages.dll"), source == "PerfCounters");
    for (const std::string_view source : systemSources)
        addSource("System", source, below("Corvane/system.dll"));
    for (const std::string_view source : silentSources)
        setValue(std::string(services) + "EventLog\\Application\\" + std::string(source), "TypesSupported",
                 7u);
    if (options.legacyNotifier) {
        setValue("SOFTWARE\\Tessaly\\Kesn", "DataPath", legacyProgram(root).parent_path().string());
        addService("TsKesnSvr", legacyProgram(root).string());
    }
    if (!options.serviceInstalled)
        return;
    addService("HbQlnSvc", below("Service/HbQlnSvc.exe"));
    addOwnSource("MeridaneCorvane_HbQlnSvc", below("Service/MeridaneCorvane_HbQlnSvc.dll"));
    addOwnSource("QLNTest", below("QLNAdmin/QLNTest_MC.DLL"));
}

}  // namespace host
