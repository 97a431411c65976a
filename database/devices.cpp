#include "database/devices.h"

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "database/openRecordset.h"
#include "database/settings.h"

using core::Frame;
using core::Step;
using platform::ObjectState;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

std::string deviceQuery(std::string_view column, long deviceKey) {
    return "SELECT " + std::string(column) + " FROM Device WHERE DeviceKey = " + std::to_string(deviceKey);
}

// The recipient whose device it is; 0 for nobody.
long ownerOf(long deviceKey) {
    Recordset link = openForReading("SELECT RecipientKey FROM DeviceRecipient WHERE DeviceKey = " +
                                    std::to_string(deviceKey));
    const long owner = link.EOF_() || link.isNull("RecipientKey") ? 0 : link.number("RecipientKey");
    link.close();
    return owner;
}

}  // namespace

long createDevice(Frame& frame, Recordset& devices, const NewDevice& device, std::string_view logLine) {
    const bool filled = frame.steps({Step([&] { devices.addNew(); }),
                                     Step([&] { devices.set("DeviceType", std::int64_t{device.type}); }),
                                     Step([&] { devices.set("DeviceAddress", device.address); }),
                                     Step([&] { devices.set("DeviceActive", boolean(true)); })});
    if (!logLine.empty())
        core::gLog().log(logLine, core::logInfo, frame.tag());
    // The highest key is this device's only if this device was written, whole.
    if (!filled || !frame.step([&] { devices.update(); }))
        return 0;
    const long key = getLastKey("Device", "DeviceKey");
    if (key == 0 || linkDeviceRecipient(key, device.recipientKey))
        return key;
    // No window reaches a device without an owner.
    frame.step([&] { deleteRows("Device", "DeviceKey", key); });
    return 0;
}

bool linkDeviceRecipient(long deviceKey, long recipientKey) {
    return core::procedure(module, "linkDeviceRecipient", false, [&](Frame& frame, bool& linked) {
        Recordset links;
        linked = frame.steps({Step([&] { links = openForWriting("SELECT * FROM DeviceRecipient"); }),
                              Step([&] { links.addNew(); }),
                              Step([&] { links.set("DeviceKey", std::int64_t{deviceKey}); }),
                              Step([&] { links.set("RecipientKey", std::int64_t{recipientKey}); })}) &&
                 frame.step([&] { links.update(); });
        frame.step([&] { links.close(); });
    });
}

void addToExistingEvents(long recipientKey, long deviceKey) {
    core::procedure(module, "addToExistingEvents", [&](Frame& frame) {
        Recordset events;
        Recordset assignments;
        frame.step([&] {
            events = openForReading(
                "SELECT DISTINCT Recipients.RecipientKey, EventDevice.EventKey "
                "FROM (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
                "DeviceRecipient.RecipientKey) INNER JOIN EventDevice ON DeviceRecipient.DeviceKey = "
                "EventDevice.DeviceKey "
                "WHERE Recipients.RecipientKey = " +
                std::to_string(recipientKey) + " AND EventDevice.DeviceKey <> " + std::to_string(deviceKey));
        });
        frame.step([&] { assignments = openForBatch("SELECT * FROM EventDevice"); });
        while (events.state() == ObjectState::open && !events.EOF_()) {
            frame.step([&] { assignments.addNew(); });
            frame.step([&] { assignments.set("EventKey", events.value("EventKey")); });
            frame.step([&] { assignments.set("DeviceKey", std::int64_t{deviceKey}); });
            frame.step([&] { assignments.set("Active", boolean(false)); });
            frame.step([&] { assignments.update(); });
            frame.step([&] { events.moveNext(); });
        }
        frame.step([&] { assignments.updateBatch(); });
        frame.step([&] { assignments.close(); });
        frame.step([&] { events.close(); });
    });
}

bool deleteDevice(long deviceKey) {
    return core::procedure(module, "deleteDevice", false, [&](Frame& frame, bool& deleted) {
        long owner = 0;
        if (!frame.step([&] { owner = ownerOf(deviceKey); }))
            return;
        // Assignments first, so that the service cannot reach a device that is half gone; and what has rows
        // left that depend on it does not go.
        if (!frame.step([&] { deleteRows("EventDevice", "DeviceKey", deviceKey); }) ||
            !frame.step([&] { deleteRows("DeviceRecipient", "DeviceKey", deviceKey); }))
            return;
        deleted = frame.step([&] { deleteRows("Device", "DeviceKey", deviceKey); });
        // No window reaches a device without an owner, and nobody could delete it later.
        if (!deleted && owner != 0)
            linkDeviceRecipient(deviceKey, owner);
    });
}

Recordset openDevicesForRecipient(long recipientKey) {
    return openForReading(
        "SELECT Recipients.RecipientKey, Device.DeviceType, Device.DeviceAddress, Device.DeviceKey, "
        "AddressDetails.DisplayName "
        "FROM (Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
        "DeviceRecipient.RecipientKey) ON Device.DeviceKey = DeviceRecipient.DeviceKey) "
        "INNER JOIN AddressDetails ON Device.DeviceKey = AddressDetails.DeviceKey "
        "WHERE Recipients.RecipientKey = " +
        std::to_string(recipientKey) +
        " "
        "ORDER BY Device.DeviceType");
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
    for (; !rows.EOF_(); rows.moveNext())
        all[rows.number("RecipientKey")].push_back(
            {rows.number("DeviceKey"), rows.isNull("DeviceType") ? 0 : rows.number("DeviceType"),
             !rows.isNull("DeviceActive") && rows.boolean("DeviceActive"), text("DeviceAddress"),
             text("DisplayName")});
    rows.close();
    return all;
}

long countDevices(long deviceType, std::optional<long> recipientKey) {
    return core::procedure(module, "countDevices", 0L, [&](Frame& frame, long& count) {
        const std::string type = std::to_string(deviceType);
        std::string query;
        if (recipientKey) {
            query =
                "SELECT COUNT(Device.DeviceKey) AS DeviceCount "
                "FROM Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON Recipients.RecipientKey = "
                "DeviceRecipient.RecipientKey) ON Device.DeviceKey = DeviceRecipient.DeviceKey "
                "WHERE Recipients.RecipientKey = " +
                std::to_string(*recipientKey);
            if (deviceType != allDeviceTypes)
                query += " AND Device.DeviceType = " + type;
        } else {
            query = "SELECT COUNT(DeviceKey) AS DeviceCount FROM Device ";
            if (deviceType != allDeviceTypes)
                query += "Where DeviceType = " + type;
        }
        Recordset row;
        frame.step([&] { row = openForReading(query); });
        frame.step([&] { count = row.number("DeviceCount"); });
        frame.step([&] { row.close(); });
    });
}

DeviceCounts countDevicesByRecipient() {
    return core::procedure(module, "countDevicesByRecipient", DeviceCounts(),
                           [&](Frame& frame, DeviceCounts& counts) {
        Recordset rows;
        frame.step([&] {
            rows = openForReading(
                "SELECT Recipients.RecipientKey, Device.DeviceType, COUNT(Device.DeviceKey) AS "
                "DeviceCount "
                "FROM Device INNER JOIN (Recipients INNER JOIN DeviceRecipient ON "
                "Recipients.RecipientKey = DeviceRecipient.RecipientKey) ON Device.DeviceKey = "
                "DeviceRecipient.DeviceKey "
                "GROUP BY Recipients.RecipientKey, Device.DeviceType");
            for (; !rows.EOF_(); rows.moveNext()) {
                auto& ofRecipient = counts[rows.number("RecipientKey")];
                const long count = rows.number("DeviceCount");
                const long type = rows.isNull("DeviceType") ? 0 : rows.number("DeviceType");
                ofRecipient[allDeviceTypes] += count;
                if (type >= voiceMail && type <= failover)
                    ofRecipient[static_cast<std::size_t>(type)] = count;
            }
            rows.close();
        });
    });
}

bool isDeviceActive(long deviceKey) {
    return activeProcedure("isDeviceActive", "Device", deviceQuery("DeviceActive", deviceKey), deviceKey);
}

long getDeviceType(long deviceKey) {
    return core::procedure(module, "getDeviceType", -1L, [&](Frame& frame, long& type) {
        Recordset row;
        frame.step([&] { row = openForReading(deviceQuery("DeviceType", deviceKey)); });
        frame.step([&] {
            if (!row.EOF_())
                type = row.number("DeviceType");
        });
        frame.step([&] { row.close(); });
    });
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
