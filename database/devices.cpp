#include "database/devices.h"

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "database/openRecordset.h"
#include "database/settings.h"

using core::Frame;
using platform::Query;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

// The type of the present row's device; 0, which is no type, for one without.
template <class Row>
long typeOf(Row& row) {
    return row.isNull("DeviceType") ? 0 : row.number("DeviceType");
}

// The recipient whose device it is; 0 for nobody.
long ownerOf(long deviceKey) {
    Recordset link =
        openForReading({"SELECT RecipientKey FROM DeviceRecipient WHERE DeviceKey = ?", {deviceKey}});
    const long owner = link.EOF_() || link.isNull("RecipientKey") ? 0 : link.number("RecipientKey");
    link.close();
    return owner;
}

Query countQuery(long deviceType, std::optional<long> recipientKey) {
    constexpr std::string_view all = "SELECT COUNT(DeviceKey) AS DeviceCount FROM Device ";
    constexpr std::string_view allOfType =
        "SELECT COUNT(DeviceKey) AS DeviceCount FROM Device Where DeviceType = ?";
    constexpr std::string_view ofRecipient =
        "SELECT COUNT(Device.DeviceKey) AS DeviceCount "
        "FROM Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
        "DeviceRecipient.RecipientKey) ON Device.DeviceKey = DeviceRecipient.DeviceKey "
        "WHERE Recipients.RecipientKey = ?";
    if (!recipientKey)
        return deviceType == allDeviceTypes ? Query(all) : Query(allOfType, {deviceType});
    if (deviceType == allDeviceTypes)
        return Query(ofRecipient, {*recipientKey});
    return Query(std::string(ofRecipient) + " AND Device.DeviceType = ?", {*recipientKey, deviceType});
}

}  // namespace

long createDevice(Frame& frame, Rows& devices, const NewDevice& device, std::string_view logLine) {
    devices.addNew();
    devices.set("DeviceType", std::int64_t{device.type});
    devices.set("DeviceAddress", device.address);
    devices.set("DeviceActive", true);
    if (!logLine.empty())
        core::gLog().log(logLine, core::logInfo, frame.tag());
    // The highest key is this device's only if this device was written, whole.
    if (!devices.allRan() || !devices.update())
        return 0;
    const long key = getLastKey("Device", "DeviceKey");
    if (key != 0 && linkDeviceRecipient(key, device.recipientKey))
        return key;
    // No window reaches a device without an owner.
    devices.deleteCurrent();
    return 0;
}

bool linkDeviceRecipient(long deviceKey, long recipientKey) {
    return core::procedure(module, "linkDeviceRecipient", false, [&](Frame& frame, bool& linked) {
        Rows links(frame);
        links.openForAdding("DeviceRecipient");
        links.addNew();
        links.set("DeviceKey", deviceKey);
        links.set("RecipientKey", recipientKey);
        linked = links.allRan() && links.update();
        links.close();
    });
}

void addToExistingEvents(long recipientKey, long deviceKey) {
    core::procedure(module, "addToExistingEvents", [&](Frame& frame) {
        Rows events(frame);
        Rows assignments(frame);
        events.openForReading(
            {"SELECT DISTINCT Recipients.RecipientKey, EventDevice.EventKey "
             "FROM (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
             "DeviceRecipient.RecipientKey) INNER JOIN EventDevice ON DeviceRecipient.DeviceKey = "
             "EventDevice.DeviceKey "
             "WHERE Recipients.RecipientKey = ? AND EventDevice.DeviceKey <> ?",
             {recipientKey, deviceKey}});
        assignments.openForAddingBatch("EventDevice");
        while (events.next()) {
            assignments.addNew();
            assignments.copy("EventKey", events);
            assignments.set("DeviceKey", deviceKey);
            assignments.set("Active", false);
            // A row without its event or its device would be one that no view shows.
            if (assignments.allRan())
                assignments.update();
        }
        assignments.updateBatch();
        assignments.close();
        events.close();
    });
}

bool deleteDevice(long deviceKey) {
    return core::procedure(module, "deleteDevice", false, [&](Frame& frame, bool& deleted) {
        long owner = 0;
        if (!frame.step([&] { owner = ownerOf(deviceKey); }))
            return;
        // Assignments first, so that the service cannot reach a device that is half gone; and what has rows
        // left that depend on it does not go.
        if (!execute(frame, {"DELETE FROM EventDevice WHERE DeviceKey = ?", {deviceKey}}) ||
            !execute(frame, {"DELETE FROM DeviceRecipient WHERE DeviceKey = ?", {deviceKey}}))
            return;
        deleted = execute(frame, {"DELETE FROM Device WHERE DeviceKey = ?", {deviceKey}});
        // No window reaches a device without an owner, and nobody could delete it later.
        if (!deleted && owner != 0)
            linkDeviceRecipient(deviceKey, owner);
    });
}

Recordset openDevicesForRecipient(long recipientKey) {
    return openForReading(
        {"SELECT Recipients.RecipientKey, Device.DeviceType, Device.DeviceAddress, Device.DeviceKey, "
         "AddressDetails.DisplayName "
         "FROM (Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
         "DeviceRecipient.RecipientKey) ON Device.DeviceKey = DeviceRecipient.DeviceKey) "
         "INNER JOIN AddressDetails ON Device.DeviceKey = AddressDetails.DeviceKey "
         "WHERE Recipients.RecipientKey = ? ORDER BY Device.DeviceType",
         {recipientKey}});
}

std::map<long, std::vector<RecipientDevice>> devicesOfAllRecipients() {
    Recordset rows = openForReading(
        "SELECT Recipients.RecipientKey, Device.DeviceType, Device.DeviceAddress, Device.DeviceActive, "
        "Device.DeviceKey, AddressDetails.DisplayName "
        "FROM (Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
        "DeviceRecipient.RecipientKey) ON Device.DeviceKey = DeviceRecipient.DeviceKey) "
        "INNER JOIN AddressDetails ON Device.DeviceKey = AddressDetails.DeviceKey "
        "ORDER BY Recipients.RecipientKey, Device.DeviceType, Device.DeviceKey");
    const auto text = [&](const char* field) {
        return rows.isNull(field) ? std::string() : rows.text(field);
    };
    std::map<long, std::vector<RecipientDevice>> all;
    while (rows.next())
        all[rows.number("RecipientKey")].push_back(
            {rows.number("DeviceKey"), typeOf(rows),
             !rows.isNull("DeviceActive") && rows.boolean("DeviceActive"), text("DeviceAddress"),
             text("DisplayName")});
    rows.close();
    return all;
}

long countDevices(long deviceType, std::optional<long> recipientKey) {
    return core::procedure(module, "countDevices", 0L, [&](Frame& frame, long& count) {
        Rows row(frame);
        row.openForReading(countQuery(deviceType, recipientKey));
        count = row.number("DeviceCount");
        row.close();
    });
}

std::optional<DeviceCounts> countDevicesByRecipient() {
    return core::procedure(module, "countDevicesByRecipient", std::optional<DeviceCounts>(),
                           [&](Frame& frame, std::optional<DeviceCounts>& counts) {
        Rows rows(frame);
        rows.openForReading(
            "SELECT Recipients.RecipientKey, Device.DeviceType, COUNT(Device.DeviceKey) AS DeviceCount "
            "FROM Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
            "DeviceRecipient.RecipientKey) ON Device.DeviceKey = DeviceRecipient.DeviceKey "
            "GROUP BY Recipients.RecipientKey, Device.DeviceType");
        DeviceCounts counted;
        while (rows.next()) {
            auto& ofRecipient = counted[rows.number("RecipientKey")];
            const long count = rows.number("DeviceCount");
            const long type = typeOf(rows);
            ofRecipient[allDeviceTypes] += count;
            if (type >= voiceMail && type <= failover)
                ofRecipient[static_cast<std::size_t>(type)] = count;
        }
        if (rows.allRan())
            counts = std::move(counted);
    });
}

bool isDeviceActive(long deviceKey) {
    return activeProcedure("isDeviceActive", "Device",
                           {"SELECT DeviceActive FROM Device WHERE DeviceKey = ?", {deviceKey}}, deviceKey);
}

std::optional<long> readDeviceType(long deviceKey) {
    return core::procedure(module, "getDeviceType", std::optional<long>(),
                           [&](Frame& frame, std::optional<long>& type) {
        Rows row(frame);
        row.openForReading({"SELECT DeviceType FROM Device WHERE DeviceKey = ?", {deviceKey}});
        // One without a type may be failover like one whose type cannot be read: a failure, and no type.
        const long read = row.hasRow() ? row.number("DeviceType") : noDevice;
        if (row.allRan())
            type = read;
        row.close();
    });
}

long getDeviceType(long deviceKey) {
    return readDeviceType(deviceKey).value_or(noDevice);
}

std::string getDeviceLabel(long deviceType) {
    switch (deviceType) {
        case voiceMail:
            return modLocalize::myLoadResString(1147);
        case pager:
            return modLocalize::myLoadResString(1097);
        case email:
            return modLocalize::myLoadResString(1098);
        case smtpAddress:
            return modLocalize::myLoadResString(1200);
        case snmpTrap:
            return modLocalize::myLoadResString(1284);
        case syslog:
            return modLocalize::myLoadResString(1285);
        case failover:
            return modLocalize::myLoadResString(1291);
        default:
            return {};
    }
}

}  // namespace mdlDatabase
