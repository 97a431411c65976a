// What the kills of writes to the stores share: a team of two with its events, and the order of the writes,
// told once more as statements. The states that these make, one after the other, are all that a kill may
// leave.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "database/addressDetails.h"
#include "killed.h"

namespace killed {

using namespace mdlDatabase;
using Lines = std::vector<std::string>;

// Ann (5) has one or more devices of each kind but the trap, and is on both events; Ben (6) has a pager.
inline constexpr long ann = 5, event = 10, inactiveEvent = 11;
inline constexpr char team[] =
    "UPDATE Configuration SET Value = '0' WHERE Setting = 'WarnOnDuplicateMonitoredEvents';"
    "INSERT INTO Events VALUES(10, 'Backup', 17, 'old', 1, -1, 0, '2026-01-02 03:04:05'),"
    "(11, 'Cluster', 5, '', 1, 0, 0, '2026-01-02 03:04:05');"
    "INSERT INTO Contents VALUES(10, 1, 'old.wav', 0, 'old', 'old'), (10, 3, NULL, 0, 'old', 'old');"
    "INSERT INTO Recipients VALUES(5, 'Ann', 0), (6, 'Ben', -1);"
    "INSERT INTO Device VALUES(1, 1, 'v', 0), (2, 3, 'lost', -1), (3, 2, 'p1', -1), (4, 2, 'p2', 0),"
    "(5, 2, 'p3', -1), (6, 4, 's1', -1), (7, 6, 'h', -1), (8, 7, 'Failover', -1), (20, 2, 'b', -1);"
    "INSERT INTO DeviceRecipient SELECT DeviceKey, iif(DeviceKey = 20, 6, 5) FROM Device;"
    "INSERT INTO EventDevice VALUES(10, 1, -1), (10, 3, -1), (10, 5, 0), (10, 8, 0), (10, 20, -1), (11, 2, "
    "-1),"
    "(11, 3, 0), (11, 6, -1);"
    "INSERT INTO AddressDetails SELECT DeviceAddress, 'old', 3, DeviceKey FROM Device;"
    "INSERT INTO Exclusions VALUES(8, 'old', 1), (9, 'older', 2)";

inline void prepareTeam(TemporaryHost& host) {
    prepareDatabase(host, team);
    host.makeDirectory({"INSERT INTO GlobalSubscriber VALUES('Ann', 'v', ''), ('Annex', 'v2', '')"});
}

// A name for the state after a write, and a statement that does the same as the write.
using Writes = std::vector<std::pair<std::string, std::string>>;

inline void addDeletion(Writes& writes, long device, const std::string& name) {
    for (const std::string table : {"EventDevice", "DeviceRecipient", "Device"})
        writes.emplace_back(name + (table == "Device" ? " deleted" : " deletion begun"),
                            "DELETE FROM " + table + " WHERE DeviceKey = " + std::to_string(device));
}

// `events` are those that the recipient is on: all of them come in one write.
inline void addCreation(Writes& writes, const std::string& name, const std::string& device, long recipient,
                        const Lines& events) {
    const std::string key = device.substr(0, device.find(','));
    writes.emplace_back(name + " begun", "INSERT INTO Device VALUES(" + device + ", -1)");
    writes.emplace_back(name + (events.empty() ? "" : " begun"),
                        "INSERT INTO DeviceRecipient VALUES(" + key + ", " + std::to_string(recipient) + ")");
    std::string rows;
    for (const std::string& each : events)
        rows += (rows.empty() ? "(" : ", (") + each + ", " + key + ", 0)";
    if (!rows.empty())
        writes.emplace_back(name, "INSERT INTO EventDevice VALUES" + rows);
}

// Everything that the operations write. What an event is assigned to is there, at any moment.
inline std::string contentOf(const TemporaryHost& host) {
    EXPECT_EQ(
        one(host.databaseFile(),
            "SELECT count(*) FROM EventDevice WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device JOIN "
            "DeviceRecipient USING(DeviceKey))"),
        "0");
    std::string content;
    for (const std::string table : {"Events", "Contents", "Recipients", "Device", "DeviceRecipient",
                                    "EventDevice", "AddressDetails", "Exclusions"})
        for (const std::string& row :
             support::query(host.databaseFile(), "SELECT * FROM " + table + " ORDER BY 1, 2"))
            content.append(table).append(" ").append(row).append("\n");
    return content;
}

struct OrderedOperation {
    std::string name;
    std::function<void()> operation;
    Writes writes;
    std::function<void()> onceMore;  // after a start
    std::function<void(const TemporaryHost&)> afterwards;
};

inline void killInOrder(const OrderedOperation& row) {
    std::map<std::string, std::string> states;
    {
        TemporaryHost host;
        prepareTeam(host);
        states[contentOf(host)] = "nothing";
        for (const auto& [name, statement] : row.writes) {
            support::run(host.databaseFile(), statement);
            states.try_emplace(contentOf(host), name);
        }
    }
    support::killRepeatedly(
        {row.name, prepareTeam,
         [] {
        openDatabase();
        mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
         },
         row.operation, [&](const TemporaryHost& host) { return lookUp(states, contentOf(host)); },
         [&] {
        startUp();
        row.onceMore();
        },
        row.afterwards});
}

}  // namespace killed
