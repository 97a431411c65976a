// What the rows of kills share: a host with a database, the start that follows a kill, and how a state is
// told.
#pragma once

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>

#include "core/state.h"
#include "database/addressDetails.h"
#include "database/events.h"
#include "database/lifecycle.h"
#include "database/settings.h"
#include "server/mdlCorvaneDatabase.h"
#include "support/killHarness.h"

namespace killed {

namespace fs = std::filesystem;
using support::TemporaryHost;

// The one row of a query.
inline std::string one(const fs::path& database, const std::string& statement) {
    const auto rows = support::query(database, statement);
    return rows.size() == 1 ? rows.front() : "(" + std::to_string(rows.size()) + " rows)";
}

// The name of an allowed state; empty, after showing it, for any other.
inline std::string lookUp(const std::map<std::string, std::string>& allowed, const std::string& state) {
    const auto found = allowed.find(state);
    if (found == allowed.end())
        std::printf("found: %s\n", state.c_str());
    return found == allowed.end() ? std::string() : found->second;
}

// The database's part of the start-up, in its order.
inline void startUp() {
    mdlDatabase::openDatabase();
    mdlDatabase::upgradeDatabase();
    mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
    core::gIgnoreEventKey = mdlDatabase::getIgnoreEventKey();
    mdlDatabase::rebuildAddressDetailsTable();
    mdlDatabase::makeInitialDatabaseChanges();
}

inline void prepareHost(TemporaryHost& host) {
    host.setRegistry(core::productRegistryKey, "DatabasePath", host.databaseFolder().string());
    host.makeDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId, DtmfAccessId)",
                        "CREATE TABLE DistributionList(DisplayName, DirectoryId)"});
}

inline void prepareDatabase(TemporaryHost& host, const std::string& statements) {
    prepareHost(host);
    fs::copy_file(host.databaseFolder() / "QLNDB_FRESH.MDB", host.databaseFile());
    support::run(host.databaseFile(), statements);
}

}  // namespace killed
