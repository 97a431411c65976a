// What createHost fills a new host with.
#pragma once

#include <filesystem>

#include "host/provision.h"

namespace host {

// Version, product keys, services and event sources of a server, into the present host's registry.
// `root` is the installation tree.
void fillDemonstrationRegistry(const std::filesystem::path& root, const HostOptions& options);

// The legacy notifier below the present host's installation tree, its service's program from the kit, unless
// that is empty. The registry is fillDemonstrationRegistry's.
void fillLegacyNotifier(const std::filesystem::path& root, const std::filesystem::path& kit);

// A day of records in both event logs of the present host, with `earlierDays` some days before it too.
void fillDemonstrationEvents(bool earlierDays);

// Makes the configuration database beside its template, with recipients, events, exclusions and a history
// that fits fillDemonstrationEvents with its earlier days.
void fillDemonstrationNotifications(const std::filesystem::path& databaseFolder);

// Creates a folder with its parents where they are missing, not readable by others.
void ensureFolder(const std::filesystem::path& folder);

}  // namespace host
