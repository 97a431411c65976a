#include "database/assignment.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <vector>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/confirmation.h"
#include "database/devices.h"
#include "database/openRecordset.h"
#include "platform/machine/characters.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";
constexpr std::string_view selectionPrefix = "DeviceKey:";
constexpr std::size_t typeNameWidth = 15;
constexpr std::size_t activeWidth = 5;

platform::Query assignmentQuery(long eventKey) {
    return {"SELECT * FROM EventDevice WHERE EventKey = ?", {eventKey}};
}

// The number behind the prefix. Raises 13 for another text, such as the key of a recipient's node, which is
// ticked like a device's when none of his devices is shown below it.
long deviceKeyOf(const std::string& key) {
    std::size_t end = 0;
    const std::string number = key.substr(std::min(selectionPrefix.size(), key.size()));
    try {
        const long deviceKey = std::stol(number, &end);
        if (end == number.size())
            return deviceKey;
    } catch (const std::logic_error&) {
        // told below
    }
    throw platform::makeFailure(platform::typeMismatch, key);
}

// Aligned by characters: a language may give a type a name beyond ASCII.
std::string rightAligned(const std::string& text, std::size_t width) {
    const std::size_t characters = platform::countCharacters(text);
    return std::string(characters < width ? width - characters : 0, ' ') + text;
}

void logChoice(const Frame& frame, const std::string& text) {
    core::gLog().log(text, core::logVersionInfo, frame.tag());
}

// A failover device makes the primary server give up its role, so it takes a Yes of its own.
bool failoverConfirmed() {
    return confirmed(myLoadResString(1297), myLoadResString(1298));
}

void logDeclined(const Frame& frame) {
    logChoice(frame, "User chose not to enable this failover device.");
}

void tellUnknown(const Frame& frame, const std::string& key) {
    core::gLog().log("Not enabled, because it is gone or cannot be read: " + key, core::logError,
                     frame.tag());
}

// A device that is to be on an event.
struct Chosen {
    long deviceKey = 0;
    long type = 0;
};

// The devices of a selection. Required: nobody asks whose a device is. But one that is gone gets no row, as a
// row ends with its device. Nor does one of an unknown type, which may be failover; `known` is false then.
std::vector<Chosen> chosenDevices(Frame& frame, const DeviceSelection& selection, bool& known) {
    std::vector<Chosen> chosen;
    for (const std::string& key : selection.keys()) {
        long deviceKey = 0;
        // A row for no device would be one that no view shows.
        if (!frame.step([&] { deviceKey = deviceKeyOf(key); }))
            continue;
        const std::optional<long> type = readDeviceType(deviceKey);
        if (type && *type != noDevice) {
            chosen.push_back({deviceKey, *type});
            continue;
        }
        known = known && type;
        tellUnknown(frame, key);
    }
    return chosen;
}

void addAssignment(Frame& frame, Rows& rows, long eventKey, const Chosen& device) {
    bool active = true;
    if (device.type == failover) {
        active = failoverConfirmed();
        if (active)
            logChoice(frame, "User chose to enable this failover device.");
        else
            logDeclined(frame);
    }
    logChoice(frame, "Adding DeviceKey: " + std::to_string(device.deviceKey) + " (" +
                         rightAligned(getDeviceLabel(device.type), typeNameWidth) +
                         ") Active: " + rightAligned(active ? "True" : "False", activeWidth) +
                         " to EventKey: " + std::to_string(eventKey));
    rows.addNew();
    rows.set("EventKey", eventKey);
    rows.set("DeviceKey", device.deviceKey);
    rows.set("Active", active);
    // A row without its event or its device would be one that no view shows.
    if (rows.allRan())
        rows.update();
}

// Brings the present row in line with the selection, from which it takes the row's entry.
void changeAssignment(Frame& frame, Rows& rows, DeviceSelection& selection) {
    const long deviceKey = rows.number("DeviceKey");
    const bool active = rows.boolean("Active");
    const std::string key = selectionKey(deviceKey);
    const std::optional<long> type = readDeviceType(deviceKey);
    const bool selected = selection.contains(key);
    // Without its type nobody can say whether a question is due; the row stays as it is.
    if (selected && (!type || *type == noDevice)) {
        tellUnknown(frame, key);
        selection.remove(key);
        return;
    }
    if (selected && *type == failover && !active && !failoverConfirmed()) {
        logDeclined(frame);
        selection.remove(key);
        return;
    }
    logChoice(frame, (selected ? "Enabling " : "Disabling ") + key + " (" +
                         getDeviceLabel(type.value_or(noDevice)) + ")");
    rows.set("Active", selected);
    selection.remove(key);
    rows.update();
}

}  // namespace

std::string selectionKey(long deviceKey) {
    return std::string(selectionPrefix) + std::to_string(deviceKey);
}

Recordset getRecipientsForEvent(long eventKey) {
    // Required: joined with AddressDetails by the address's text, so a device without a row there is not part
    // of the answer, and DISTINCT folds devices that share an address.
    return queryProcedure(
        "getRecipientsForEvent",
        {"SELECT DISTINCT Recipients.RecipientName, EventDevice.Active, Device.DeviceType, "
         "AddressDetails.DisplayName, Device.DeviceKey, Recipients.RecipientKey "
         "FROM (Recipients INNER JOIN ((Device INNER JOIN (EventDevice INNER JOIN Events ON "
         "EventDevice.EventKey = "
         "Events.EventKey) ON Device.DeviceKey = EventDevice.DeviceKey) "
         "INNER JOIN DeviceRecipient ON Device.DeviceKey = DeviceRecipient.DeviceKey) ON "
         "Recipients.RecipientKey = "
         "DeviceRecipient.RecipientKey) "
         "INNER JOIN AddressDetails ON Device.DeviceAddress = AddressDetails.DeviceAddress "
         "Where Events.EventKey = ? ORDER BY Recipients.RecipientName",
         {eventKey}});
}

std::map<long, bool> assignmentsOfEvent(long eventKey) {
    Recordset rows =
        openForReading({"SELECT DeviceKey, Active FROM EventDevice WHERE EventKey = ?", {eventKey}});
    std::map<long, bool> assignments;
    while (rows.next()) {
        if (rows.isNull("DeviceKey"))
            continue;
        bool& active = assignments[rows.number("DeviceKey")];
        active = active || rows.boolean("Active");
    }
    rows.close();
    return assignments;
}

bool addRecipientToEvent(long eventKey, const DeviceSelection& selection, bool clearFirst) {
    return core::procedure(module, "addRecipientToEvent", false, [&](Frame& frame, bool& cleared) {
        bool known = true;
        const std::vector<Chosen> chosen = chosenDevices(frame, selection, known);
        Rows rows(frame);
        if (!rows.openForAdding("EventDevice"))
            return;
        // The old rows do not go for new ones that are known only in part. Beside rows that are still there
        // the event would go to both the old and the new devices.
        cleared = !clearFirst ||
                  (known && execute(frame, {"DELETE FROM EventDevice WHERE EventKey = ?", {eventKey}}));
        if (!cleared)
            return;
        for (const Chosen& device : chosen)
            addAssignment(frame, rows, eventKey, device);
        rows.close();
    });
}

bool changeRecipientsForEvent(long eventKey, DeviceSelection& selection) {
    return core::procedure(module, "changeRecipientsForEvent", false, [&](Frame& frame, bool& hadRows) {
        Rows rows(frame);
        // Whoever does not know the rows would add each of them a second time.
        if (!rows.openForWriting(assignmentQuery(eventKey)))
            return;
        hadRows = rows.count() > 0;
        while (rows.next())
            changeAssignment(frame, rows, selection);
        rows.close();
        addRecipientToEvent(eventKey, selection, false);
    });
}

bool removeRecipientFromEvent(long eventKey, long recipientKey) {
    return core::procedure(module, "removeRecipientFromEvent", false, [&](Frame& frame, bool& rowsLeft) {
        Rows rows(frame);
        rows.openForBatch(assignmentQuery(eventKey));
        if (rows.hasRow()) {
            Rows links(frame);
            links.openForReading({"SELECT * FROM DeviceRecipient WHERE RecipientKey = ?", {recipientKey}});
            while (rows.count() > 0 && links.next()) {
                if (rows.find("DeviceKey = " + std::to_string(links.number("DeviceKey", noDevice))))
                    rows.deleteCurrent();
            }
            rows.updateBatch();
            links.close();
        }
        rowsLeft = rows.count() >= 1;
        rows.close();
    });
}

}  // namespace mdlDatabase
