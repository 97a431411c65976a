// Makes and fills hosts: the template database, the registry, the directory, the installation tree.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// Writes the template of the configuration database (all tables, indexes, default settings, built-in
// events, list of sources) to `file`, replacing it. `serviceLog` is the file that the service is to write its
// log to, empty for none. Raises platform::Failure.
void createTemplateDatabase(const std::filesystem::path& file, const std::filesystem::path& serviceLog = {});

enum class DirectoryLayout { tables, views };

struct HostOptions {
    unsigned corvaneMajor = 4;  // 4, or 3 for version 3.1
    DirectoryLayout layout = DirectoryLayout::tables;
    bool snmpAgent = false;
    bool failoverPrimary = false;
    bool serviceInstalled = true;  // and stopped; false as on a server before the console's first run
    bool inUse = false;            // recipients, events and a history of some days; false: never configured
    bool legacyNotifier = false;   // installed and stopped, with a database of its own
    unsigned subscribers = 240;    // up to 1,000,000
    unsigned distributionLists = 24;
    std::filesystem::path kit;  // folder with the program files, laid out as the tree is; empty for none
};

// The account of the demonstration host's main service, and its password.
inline constexpr std::string_view demonstrationAccount = "CORVANE01\\TsHubSvc";
inline constexpr std::string_view demonstrationPassword = "harbour-7";

// Where the program of the legacy notifier's service lies, in an installation tree as in the kit.
std::filesystem::path legacyProgram(const std::filesystem::path& root);

// Makes a complete demonstration host below `folder`: Host/ (registry, accounts, directory, event logs,
// menu) and the installation tree beside it.
// The present host becomes the new one. Raises platform::Failure, 58 for a folder that holds a host already.
void createHost(const std::filesystem::path& folder, const HostOptions& options);

// Writes two records into the present host's Application log that its service, where the host is in use,
// tells somebody of. Raises platform::Failure.
void writeDemonstrationNews();

// Copies the kit's files over those of an installation tree; databases and host are not touched.
void installKit(const std::filesystem::path& kit, const std::filesystem::path& root);

// Imports subscribers or distribution lists from CSV text with a header line into the present host's
// directory, all rows or none; gives the number of rows. The columns of a subscriber are Alias, FirstName,
// LastName, Extension and Type; of a distribution list Alias, DisplayName and Extension. DisplayName and
// DirectoryId may be there for both. `name` stands in failures: 5 with "name:line: reason".
long importDirectory(std::string_view csv, const std::string& name);

}  // namespace host
