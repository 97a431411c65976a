#include "bench/largeInstallation.h"

#include <string>

#include "core/classLog.h"
#include "core/state.h"
#include "host/directory.h"
#include "host/provision.h"
#include "host/sqliteFile.h"
#include "platform/machine/host.h"

namespace bench {

namespace {

std::string numbered(long count, const std::string& statement) {
    return "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
           std::to_string(count) + ") " + statement + ";";
}

// Three devices for everybody, until twenty are left for the last recipient.
std::string devices() {
    const std::string big = "i >= " + std::to_string(bigFirstDevice);
    return numbered(deviceCount, "INSERT INTO Device SELECT i, CASE WHEN i = " + std::to_string(deviceCount) +
                                     " THEN 6 WHEN " + big +
                                     " THEN 2 + i % 2 * 2 ELSE i % 3 + 1 END, CASE WHEN " + big +
                                     " THEN 'address-' || i WHEN i % 3 = 1 THEN '555-' || i ELSE 'id-' || "
                                     "(i * 31 % " +
                                     std::to_string(subscriberCount + listCount) + ") END, -1 FROM n") +
           numbered(deviceCount, "INSERT INTO DeviceRecipient SELECT i, CASE WHEN " + big + " THEN " +
                                     std::to_string(bigRecipient) + " ELSE (i - 1) / 3 + 1 END FROM n");
}

std::string addressDetails() {
    const std::string lists =
        "CAST(substr(DeviceAddress, 4) AS INTEGER) >= " + std::to_string(subscriberCount);
    return "INSERT INTO AddressDetails SELECT DeviceAddress, CASE WHEN DeviceType = 2 THEN DeviceAddress || "
           "' (Pager)' WHEN DeviceType = 4 THEN DeviceAddress || ' (SMTP)' WHEN DeviceType = 6 THEN 'Syslog' "
           "ELSE 'Name ' || substr(DeviceAddress, 4) || CASE WHEN " +
           lists +
           " THEN ' (Distribution List)' ELSE ' (Subscriber)' END END, CASE DeviceType WHEN 2 THEN 3 WHEN 4 "
           "THEN 4 WHEN 6 THEN 6 ELSE 1 + (" +
           lists + ") END, DeviceKey FROM Device;";
}

void makeDatabase(const std::filesystem::path& file) {
    host::createTemplateDatabase(file);
    host::SqliteFile database(file, false);
    const std::string events = std::to_string(eventCount);
    // The template has two events of its own, the catch-all one and a hidden one.
    const std::string script =
        "BEGIN;" +
        numbered(recipientCount,
                 "INSERT INTO Recipients SELECT i, 'Recipient ' || (i * 7919 % 10007), CASE "
                 "WHEN i % 10 = 0 AND i <> " +
                     std::to_string(bigRecipient) + " THEN 0 ELSE -1 END FROM n") +
        devices() + addressDetails() +
        numbered(eventCount - 2,
                 "INSERT INTO Events(EventSource, EventId, EventTitle, EventType, EventActive) SELECT "
                 "'MeridaneCorvane_' || (i % 40), i, 'Call the night shift about number ' || i, 1, -1 FROM "
                 "n") +
        numbered(assignmentCount, "INSERT INTO EventDevice SELECT (i - 1) % " + events +
                                      " + 1, (i - 1) * 7919 % " + std::to_string(deviceCount) +
                                      " + 1, CASE WHEN (i - 1) % 3 = 0 THEN 0 ELSE -1 END FROM n") +
        "COMMIT;";
    database.run(script.c_str());
    insist(database.firstValue("SELECT count(*) FROM Events") == events, "the events are complete");
}

void makeDirectory(const std::filesystem::path& file) {
    host::createDirectory(file, host::DirectoryLayout::tables, [](host::DirectoryWriter& writer) {
        for (long i = 0; i < subscriberCount + listCount; ++i) {
            const std::string number = std::to_string(i);
            const std::string id = "id-" + number;
            if (i < subscriberCount)
                writer.add(host::Subscriber{"alias" + number, "Name " + number, "First" + number,
                                            "Last" + number, number, std::to_string(i % 3 + 1), id});
            else
                writer.add(host::DistributionList{"alias" + number, "Name " + number, number, id});
        }
    });
    host::SqliteFile(file, false)
        .run(
            "CREATE INDEX S ON GlobalSubscriber(DirectoryId); CREATE INDEX L ON "
            "DistributionList(DirectoryId);");
}

}  // namespace

LargeInstallation::LargeInstallation(const std::filesystem::path& parent) : folder_(parent) {
    for (const char* part : {"Host", "QLNAdmin", "Database"})
        std::filesystem::create_directory(folder_.path() / part);
    platform::host::setFolder(folder_.path() / "Host");
    platform::program::setFile(folder_.path() / "QLNAdmin" / "QLNAdmin");
    makeDatabase(database());
    makeDirectory(directory());
    core::gDatabase.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + database().string());
    core::gCorvaneDb.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb");
}

LargeInstallation::~LargeInstallation() {
    core::resetState();
    core::resetLog();
}

std::filesystem::path LargeInstallation::directory() const {
    return platform::host::directoryDatabase();
}

}  // namespace bench
