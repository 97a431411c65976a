#include "database/recipients.h"

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/addressDetails.h"
#include "database/confirmation.h"
#include "database/devices.h"
#include "database/openRecordset.h"
#include "database/settings.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::Query;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

// The statement with the columns in their place.
Query recipientQuery(std::string_view columns, long recipientKey) {
    return {"SELECT " + std::string(columns) + " FROM Recipients WHERE RecipientKey = ?", {recipientKey}};
}

// The devices of a record, in the order in which they are created.
std::vector<NewDevice> devicesOf(const RecipientRecord& record, long recipientKey) {
    std::vector<NewDevice> devices;
    const auto add = [&](bool wanted, DeviceType type, const std::string& address) {
        if (wanted)
            devices.push_back({type, address, recipientKey});
    };
    add(!record.voiceMailDirectoryId.empty(), voiceMail, record.voiceMailDirectoryId);
    add(!record.emailDirectoryId.empty(), email, record.emailDirectoryId);
    for (const AddressEntry& number : record.pagerNumbers)
        add(true, pager, number.address);
    for (const AddressEntry& address : record.smtpAddresses)
        add(true, smtpAddress, address.address);
    add(record.snmpTrapEnabled, snmpTrap, snmpTrapAddress);
    add(record.syslogEnabled, syslog, record.syslogHostAddress);
    add(record.failoverEnabled, failover, failoverAddress);
    return devices;
}

// Deletes every device of a recipient; one that fails does not keep the others. True when none is left.
bool deleteDevicesOf(Frame& frame, long recipientKey) {
    Rows links(frame);
    bool gone = links.openForReading(
        {"SELECT DeviceKey FROM DeviceRecipient WHERE RecipientKey = ?", {recipientKey}});
    while (links.next()) {
        if (const long key = links.number("DeviceKey", noDevice); key != noDevice)
            gone = deleteDevice(key) && gone;
    }
    links.close();
    return gone;
}

}  // namespace

Recordset getRecipient(long recipientKey) {
    return queryProcedure("getRecipient", recipientQuery("*", recipientKey));
}

Recordset getRecipients() {
    return queryProcedure("getRecipients", "SELECT * FROM Recipients ORDER BY RecipientName");
}

Recordset openRecipientWithDevices(long recipientKey) {
    if (hasDeviceWithoutDetails(recipientKey))
        throw platform::Failure(objectError + 1002, "A device has no address details.  RecipientKey = " +
                                                        std::to_string(recipientKey));
    return openForReading(
        {"SELECT Recipients.RecipientKey, Recipients.RecipientName, Recipients.RecipientActive, "
         "Device.DeviceKey, Device.DeviceType, Device.DeviceAddress, Device.DeviceActive, "
         "AddressDetails.DisplayName, AddressDetails.AddressType "
         "FROM (Recipients INNER JOIN (Device INNER JOIN DeviceRecipient ON Device.DeviceKey = "
         "DeviceRecipient.DeviceKey) ON Recipients.RecipientKey = DeviceRecipient.RecipientKey) "
         "INNER JOIN AddressDetails ON Device.DeviceKey = AddressDetails.DeviceKey "
         "Where Recipients.RecipientKey = ?",
         {recipientKey}});
}

Recordset openRecipientAlone(long recipientKey) {
    return openForReading(recipientQuery("RecipientName, RecipientActive", recipientKey));
}

Recordset openEventsForRecipient(long recipientKey) {
    return openForReading(
        {"SELECT DISTINCT Recipients.RecipientKey, Events.EventSource, Events.EventID, Events.EventTitle, "
         "Events.EventKey "
         "FROM Events INNER JOIN ((Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON "
         "Recipients.RecipientKey = DeviceRecipient.RecipientKey) ON Device.DeviceKey = "
         "DeviceRecipient.DeviceKey) "
         "INNER JOIN EventDevice ON Device.DeviceKey = EventDevice.DeviceKey) ON Events.EventKey = "
         "EventDevice.EventKey "
         "WHERE Recipients.RecipientKey = ?",
         {recipientKey}});
}

long countRecipients() {
    return core::procedure(module, "countRecipients", 0L, [&](Frame& frame, long& count) {
        Rows rows(frame);
        rows.openForReading("SELECT RecipientKey FROM Recipients");
        count = rows.count();
        rows.close();
    });
}

long addNewRecipient(const RecipientRecord& record) {
    return core::procedure(module, "addNewRecipient", 0L, [&](Frame& frame, long& result) {
        Rows recipients(frame);
        recipients.openForAdding("Recipients");
        recipients.addNew();
        recipients.set("RecipientName", record.name);
        recipients.set("RecipientActive", true);
        const bool written = recipients.allRan() && recipients.update();
        recipients.close();
        // The highest key is this recipient's only if he was written.
        if (written)
            result = getLastKey("Recipients", "RecipientKey");
        if (result == 0)
            return;
        Rows devices(frame);
        devices.openForAdding("Device");
        for (const NewDevice& device : devicesOf(record, result))
            createDevice(frame, devices, device);
        devices.close();
    });
}

bool deleteRecipient(long recipientKey) {
    return core::procedure(module, "deleteRecipient", false, [&](Frame& frame, bool& deleted) {
        Rows row(frame, getRecipient(recipientKey));
        const std::string name = row.text("RecipientName");
        if (!confirmed(myLoadResString(1250) + name, myLoadResString(1251)))
            return;
        core::gLog().log("Deleting recipient: " + name + " Key: " + std::to_string(recipientKey),
                         core::logVersionInfo, frame.tag());
        if (row.isOpen())
            row.close();
        // The recipient goes last, and not while he has a device: it would have no owner.
        deleted = deleteDevicesOf(frame, recipientKey) &&
                  execute(frame, {"DELETE FROM Recipients WHERE RecipientKey = ?", {recipientKey}});
    });
}

void setRecipientActiveState(long recipientKey, bool active) {
    core::procedure(module, "setRecipientActiveState", [&](Frame& frame) {
        Rows row(frame);
        row.openForWriting(recipientQuery("RecipientKey, RecipientActive", recipientKey));
        row.set("RecipientActive", active);
        row.update();
        row.close();
    });
}

bool isRecipientActive(long recipientKey) {
    return activeProcedure("isRecipientActive", "Recipient", recipientQuery("RecipientActive", recipientKey),
                           recipientKey);
}

bool invalidRecipientDevices(long recipientKey) {
    return core::procedure(module, "invalidRecipientDevices", false, [&](Frame& frame, bool& invalid) {
        Rows rows(frame);
        rows.openForReading(
            {"SELECT AddressDetails.AddressType FROM DeviceRecipient INNER JOIN AddressDetails ON "
             "DeviceRecipient.DeviceKey = AddressDetails.DeviceKey WHERE AddressDetails.AddressType = 0 AND "
             "DeviceRecipient.RecipientKey = ?",
             {recipientKey}});
        invalid = rows.count() >= 1;
        rows.close();
    });
}

std::set<long> recipientsWithInvalidDevices() {
    return core::procedure(module, "recipientsWithInvalidDevices", std::set<long>(),
                           [&](Frame& frame, std::set<long>& keys) {
        Rows rows(frame);
        rows.openForReading(
            "SELECT DISTINCT DeviceRecipient.RecipientKey FROM DeviceRecipient INNER JOIN AddressDetails ON "
            "DeviceRecipient.DeviceKey = AddressDetails.DeviceKey WHERE AddressDetails.AddressType = 0");
        while (rows.next())
            keys.insert(rows.number("RecipientKey"));
    });
}

RecipientState stateOfRecipient(const Recordset& recipient, const std::set<long>& withInvalidDevices) {
    if (withInvalidDevices.contains(recipient.number("RecipientKey")))
        return recipientUnresolved;
    return !recipient.isNull("RecipientActive") && recipient.boolean("RecipientActive") ? recipientActive
                                                                                        : recipientInactive;
}

RecipientState getRecipientState(long recipientKey) {
    return core::procedure(module, "getRecipientState", recipientActive, [&](Frame&, RecipientState& state) {
        state = isRecipientActive(recipientKey) ? recipientActive : recipientInactive;
        if (invalidRecipientDevices(recipientKey))
            state = recipientUnresolved;
    });
}

}  // namespace mdlDatabase
