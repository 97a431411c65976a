// The registry of the demonstration host.

#include <array>
#include <string>
#include <string_view>

#include "host/demonstration.h"
#include "host/registryEntries.h"

namespace host {

namespace {

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

}  // namespace

void fillDemonstrationRegistry(const std::filesystem::path& root, const HostOptions& options) {
    const auto below = [&](const char* path) { return (root / path).string(); };
    addProduct(root, options.corvaneMajor);
    if (options.failoverPrimary)
        setValue("SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0", "Primary", 1u);
    if (options.snmpAgent)
        addSnmpAgent();

    const ServiceAccount account{std::string(demonstrationAccount), std::string(demonstrationPassword)};
    addService("TsHubMgr", below("Corvane/TsHubMgr.exe"), account);
    for (const std::string_view source : applicationSources)
        // One source has categories but no messages of its own, as some have.
        addSource("Application", source, below("Corvane/messages.dll"), source == "PerfCounters");
    for (const std::string_view source : systemSources)
        addSource("System", source, below("Corvane/system.dll"));
    for (const std::string_view source : silentSources)
        setValue(std::string(servicesKey) + "EventLog\\Application\\" + std::string(source), "TypesSupported",
                 7u);
    if (options.legacyNotifier) {
        setValue("SOFTWARE\\Tessaly\\Kesn", "DataPath", legacyProgram(root).parent_path().string());
        addService("TsKesnSvr", legacyProgram(root).string(), account);
    }
    if (options.serviceInstalled)
        addNotifyingService(root, account);
}

}  // namespace host
