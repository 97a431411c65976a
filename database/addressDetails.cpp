#include "database/addressDetails.h"

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/deviceType.h"
#include "database/openRecordset.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::ObjectState;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

// The directory's two lists, read once for each rebuild.
struct Directory {
    Recordset subscribers;
    Recordset distributionLists;

    // Only a directory that could be read, even an empty one, can tell that an entry is gone. Required: a
    // device that was cut off is not switched on again when its entry comes back. So a server that is down
    // for an hour must not cut off everybody's.
    bool isOpen() const {
        return subscribers.state() == ObjectState::open && distributionLists.state() == ObjectState::open;
    }
};

struct Details {
    std::string displayName;
    AddressType addressType = addressNotFound;
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

// An entry without a name shows its kind alone.
std::string nameOf(const Recordset& list) {
    return platform::valueText(list.value("DisplayName"));
}

Details lookUp(Directory& directory, const std::string& address) {
    // A subscriber goes before a distribution list of the same id.
    if (findEntry(directory.subscribers, address))
        return {nameOf(directory.subscribers) + myLoadResString(1193), addressSubscriber};
    if (findEntry(directory.distributionLists, address))
        return {nameOf(directory.distributionLists) + myLoadResString(1194), addressDistributionList};
    return {myLoadResString(1195) + address + ")", addressNotFound, directory.isOpen()};
}

Details detailsOf(Directory& directory, long deviceType, const std::string& address) {
    switch (deviceType) {
        case voiceMail:
        case email:
            return lookUp(directory, address);
        case pager:
            return {address + myLoadResString(1196), addressPager};
        case smtpAddress:
            return {address + myLoadResString(1197), addressSmtp};
        // Required: the label alone, with its leading blank, and without the syslog host.
        case snmpTrap:
            return {myLoadResString(1283), addressSnmpTrap};
        case syslog:
            return {myLoadResString(1292), addressSyslog};
        case failover:
            return {myLoadResString(1293), addressFailover};
        default:
            return {};
    }
}

// An empty list has nothing to go back to; a failure for each device would end the rebuild at the eleventh.
void rewind(Recordset& list) {
    if (list.state() == ObjectState::open && list.recordCount() > 0)
        list.moveFirst();
}

// Collects the deletion of all rows for the batch.
bool removeAll(Rows& details) {
    while (details.next())
        if (!details.deleteCurrent())
            return false;
    return details.allRan();
}

// Adds one row to the batch; false when it will not be there.
bool rebuildRow(Frame& frame, Rows& devices, Rows& details, Directory& directory) {
    const std::string address = devices.text("DeviceAddress");
    const long type = devices.number("DeviceType");
    Details shown;
    frame.step([&] { shown = detailsOf(directory, type, address); });
    // One that is off already needs no write.
    if (shown.cutOff && devices.boolean("DeviceActive") && devices.set("DeviceActive", false))
        devices.update();
    details.addNew();
    details.set("DeviceAddress", address);
    details.set("DisplayName", shown.displayName);
    details.set("AddressType", std::int64_t{shown.addressType});
    details.copy("DeviceKey", devices);
    const bool added = details.allRan() && details.update();
    frame.step([&] { rewind(directory.subscribers); });
    frame.step([&] { rewind(directory.distributionLists); });
    return added;
}

// A directory that cannot say more than that it failed would fill the log, line after line.
Recordset quietlyOpened(const char* table) {
    try {
        return openDirectoryList(table);
    } catch (const platform::Failure& failure) {
        if (failure.number() != platform::providerError)
            throw;
        return {};
    }
}

}  // namespace

bool rebuildAddressDetailsTable() {
    return core::procedure(module, "rebuildAddressDetailsTable", false, [&](Frame& frame, bool& whole) {
        Rows devices(frame);
        Rows details(frame);
        Directory directory;
        const bool views = core::gViewsSupported;
        // The old rows go and the new ones come in one batch: whatever fails or dies on the way leaves the
        // table as it was. Without it an event would show no devices, and saving would switch them off.
        if (!devices.openForWriting("SELECT * FROM Device") ||
            !details.openForBatch("SELECT * FROM AddressDetails") || !removeAll(details))
            return;
        frame.step([&] {
            directory.subscribers = quietlyOpened(views ? "vw_Subscriber_Global" : "GlobalSubscriber");
        });
        frame.step([&] {
            directory.distributionLists = quietlyOpened(views ? "vw_DistributionList" : "DistributionList");
        });
        bool all = true;
        while (devices.next())
            all = rebuildRow(frame, devices, details, directory) && all;
        whole = details.updateBatch() && all;
    });
}

bool hasDeviceWithoutDetails(long recipientKey) {
    Recordset rows = openForReading(
        {"SELECT DeviceRecipient.DeviceKey FROM (DeviceRecipient INNER JOIN Device ON "
         "DeviceRecipient.DeviceKey = Device.DeviceKey) LEFT JOIN AddressDetails ON Device.DeviceKey = "
         "AddressDetails.DeviceKey WHERE DeviceRecipient.RecipientKey = ? AND AddressDetails.DeviceKey IS "
         "NULL",
         {recipientKey}});
    const bool missing = !rows.EOF_();
    rows.close();
    return missing;
}

}  // namespace mdlDatabase
