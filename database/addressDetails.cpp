#include "database/addressDetails.h"

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/openRecordset.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::ObjectState;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

enum DeviceType : long { voiceMail = 1, pager, email, smtpAddress, snmpTrap, syslog, failover };
enum AddressType : long { notFound = 0, subscriber = 1, distributionList = 2 };

// The directory's two lists, read once for each rebuild.
struct Directory {
    Recordset subscribers;
    Recordset distributionLists;

    // Only a directory that could be read can tell that an entry is gone.
    bool isOpen() const {
        return subscribers.state() == ObjectState::open && distributionLists.state() == ObjectState::open;
    }
};

struct Details {
    std::string displayName;
    long addressType = notFound;
    bool cutOff = false;  // the entry is gone: the device is switched off
};

Recordset openDirectoryList(const char* table) {
    Recordset rows;
    rows.open("SELECT DisplayName, DirectoryId FROM " + std::string(table), core::gCorvaneDb,
              platform::CursorType::staticCursor, platform::LockType::readOnly,
              platform::CursorLocation::client);
    return rows;
}

// True when the list has the entry, which is then its present row.
bool findEntry(Recordset& list, const std::string& address) {
    if (list.state() != ObjectState::open || list.recordCount() < 1)
        return false;
    list.find("DirectoryId = '" + address + "'");
    return !list.EOF_();
}

Details lookUp(Directory& directory, const std::string& address) {
    // A subscriber goes before a distribution list of the same id.
    if (findEntry(directory.subscribers, address))
        return {directory.subscribers.text("DisplayName") + myLoadResString(1193), subscriber};
    if (findEntry(directory.distributionLists, address))
        return {directory.distributionLists.text("DisplayName") + myLoadResString(1194), distributionList};
    return {myLoadResString(1195) + address + ")", notFound, directory.isOpen()};
}

Details detailsOf(Directory& directory, long deviceType, const std::string& address) {
    switch (deviceType) {
        case voiceMail:
        case email:
            return lookUp(directory, address);
        case pager:
            return {address + myLoadResString(1196), deviceType + 1};
        case smtpAddress:
            return {address + myLoadResString(1197), deviceType};
        case snmpTrap:
            return {myLoadResString(1283), deviceType};
        case syslog:
            return {myLoadResString(1292), deviceType};
        case failover:
            return {myLoadResString(1293), deviceType};
        default:
            return {};
    }
}

void rewind(Recordset& list) {
    if (list.state() == ObjectState::open && list.recordCount() > 0)
        list.moveFirst();
}

void rebuildRow(Frame& frame, Recordset& devices, Recordset& details, Directory& directory) {
    std::string address;
    long type = 0;
    Details shown;
    frame.steps({[&] { address = devices.text("DeviceAddress"); },
                 [&] { type = devices.number("DeviceType"); },
                 [&] { shown = detailsOf(directory, type, address); },
                 [&] {
                     if (!shown.cutOff)
                         return;
                     devices.set("DeviceActive", std::int64_t{0});
                     devices.update();
                 },
                 [&] { details.addNew(); }, [&] { details.set("DeviceAddress", address); },
                 [&] { details.set("DisplayName", shown.displayName); },
                 [&] { details.set("AddressType", std::int64_t{shown.addressType}); },
                 [&] { details.set("DeviceKey", devices.value("DeviceKey")); }, [&] { details.update(); },
                 [&] { rewind(directory.subscribers); }, [&] { rewind(directory.distributionLists); }});
}

}  // namespace

void rebuildAddressDetailsTable() {
    core::procedure(module, "rebuildAddressDetailsTable", [&](Frame& frame) {
        // A locked file or a closed directory is told by what follows; one line for each device would drown
        // the rest of the log.
        frame.on(platform::providerError, [](const platform::Failure&) {});
        Recordset devices;
        Recordset details;
        Directory directory;
        const bool views = core::gViewsSupported;
        frame.steps({[&] { devices = openForWriting("SELECT * FROM Device"); },
                     [&] { platform::execute("DELETE FROM AddressDetails", core::gDatabase); },
                     [&] { details = openForWriting("SELECT * FROM AddressDetails"); },
                     [&] {
                         directory.subscribers =
                             openDirectoryList(views ? "vw_Subscriber_Global" : "GlobalSubscriber");
                     },
                     [&] {
                         directory.distributionLists =
                             openDirectoryList(views ? "vw_DistributionList" : "DistributionList");
                     }});
        while (devices.state() == ObjectState::open && !devices.EOF_()) {
            rebuildRow(frame, devices, details, directory);
            frame.step([&] { devices.moveNext(); });
        }
    });
}

}  // namespace mdlDatabase
