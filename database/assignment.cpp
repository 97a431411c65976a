#include "database/assignment.h"

#include <algorithm>
#include <stdexcept>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/confirmation.h"
#include "database/devices.h"
#include "database/openRecordset.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::ObjectState;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";
constexpr std::string_view selectionPrefix = "DeviceKey:";
constexpr std::size_t typeNameWidth = 15;
constexpr std::size_t activeWidth = 5;

std::string assignmentQuery(long eventKey) {
    return "SELECT * FROM EventDevice WHERE EventKey = " + std::to_string(eventKey);
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
    const auto characters = static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
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

void addAssignment(Frame& frame, Recordset& rows, long eventKey, const std::string& key) {
    long deviceKey = 0;
    // A row for no device would be one that no view shows.
    if (!frame.step([&] { deviceKey = deviceKeyOf(key); }))
        return;
    const long type = getDeviceType(deviceKey);
    bool active = true;
    if (type == failover) {
        active = failoverConfirmed();
        if (active)
            logChoice(frame, "User chose to enable this failover device.");
        else
            logDeclined(frame);
    }
    logChoice(frame, "Adding DeviceKey: " + std::to_string(deviceKey) + " (" +
                         rightAligned(getDeviceLabel(type), typeNameWidth) +
                         ") Active: " + rightAligned(active ? "True" : "False", activeWidth) +
                         " to EventKey: " + std::to_string(eventKey));
    // A row without its event or its device would be one that no view shows.
    if (frame.steps({core::Step([&] { rows.addNew(); }),
                     core::Step([&] { rows.set("EventKey", std::int64_t{eventKey}); }),
                     core::Step([&] { rows.set("DeviceKey", std::int64_t{deviceKey}); }),
                     core::Step([&] { rows.set("Active", boolean(active)); })}))
        frame.step([&] { rows.update(); });
}

// Brings the present row in line with the selection, from which it takes the row's entry.
void changeAssignment(Frame& frame, Recordset& rows, DeviceSelection& selection) {
    long deviceKey = 0;
    bool active = false;
    frame.step([&] { deviceKey = rows.number("DeviceKey"); });
    frame.step([&] { active = rows.boolean("Active"); });
    const std::string key = selectionKey(deviceKey);
    const long type = getDeviceType(deviceKey);
    const bool selected = selection.contains(key);
    if (selected && type == failover && !active && !failoverConfirmed()) {
        logDeclined(frame);
        selection.remove(key);
        return;
    }
    logChoice(frame, (selected ? "Enabling " : "Disabling ") + key + " (" + getDeviceLabel(type) + ")");
    frame.step([&] { rows.set("Active", boolean(selected)); });
    selection.remove(key);
    frame.step([&] { rows.update(); });
}

// Deletes the rows of one device in a batch of assignments.
void removeDevice(Recordset& rows, const Recordset& links) {
    rows.moveFirst();
    rows.find("DeviceKey = " + platform::valueText(links.value("DeviceKey")));
    if (!rows.EOF_())
        rows.deleteCurrent();
}

}  // namespace

std::string selectionKey(long deviceKey) {
    return std::string(selectionPrefix) + std::to_string(deviceKey);
}

Recordset getRecipientsForEvent(long eventKey) {
    // Required: joined with AddressDetails by the address's text, so a device without a row there is not part
    // of the answer, and DISTINCT folds devices that share an address.
    return queryProcedure("getRecipientsForEvent",
                          "SELECT DISTINCT Recipients.RecipientName, EventDevice.Active, Device.DeviceType, "
                          "AddressDetails.DisplayName, Device.DeviceKey, Recipients.RecipientKey "
                          "FROM (Recipients INNER JOIN ((Device INNER JOIN (EventDevice INNER JOIN Events ON "
                          "EventDevice.EventKey = "
                          "Events.EventKey) ON Device.DeviceKey = EventDevice.DeviceKey) "
                          "INNER JOIN DeviceRecipient ON Device.DeviceKey = DeviceRecipient.DeviceKey) ON "
                          "Recipients.RecipientKey = "
                          "DeviceRecipient.RecipientKey) "
                          "INNER JOIN AddressDetails ON Device.DeviceAddress = AddressDetails.DeviceAddress "
                          "Where Events.EventKey = " +
                              std::to_string(eventKey) + " ORDER BY Recipients.RecipientName");
}

bool addRecipientToEvent(long eventKey, const DeviceSelection& selection, bool clearFirst) {
    return core::procedure(module, "addRecipientToEvent", false, [&](Frame& frame, bool& cleared) {
        // Beside rows that are still there the event would go to both the old and the new devices.
        cleared = !clearFirst || frame.step([&] { deleteRows("EventDevice", "EventKey", eventKey); });
        if (!cleared)
            return;
        Recordset rows;
        frame.step([&] { rows = openForWriting("SELECT * FROM EventDevice"); });
        for (const std::string& key : selection.keys())
            addAssignment(frame, rows, eventKey, key);
        frame.step([&] { rows.close(); });
    });
}

bool changeRecipientsForEvent(long eventKey, DeviceSelection& selection) {
    return core::procedure(module, "changeRecipientsForEvent", false, [&](Frame& frame, bool& hadRows) {
        Recordset rows;
        // Whoever does not know the rows would add each of them a second time.
        if (!frame.step([&] { rows = openForWriting(assignmentQuery(eventKey)); }))
            return;
        frame.step([&] { hadRows = rows.recordCount() > 0; });
        while (!rows.EOF_()) {
            changeAssignment(frame, rows, selection);
            frame.step([&] { rows.moveNext(); });
        }
        frame.step([&] { rows.close(); });
        addRecipientToEvent(eventKey, selection, false);
    });
}

bool removeRecipientFromEvent(long eventKey, long recipientKey) {
    return core::procedure(module, "removeRecipientFromEvent", false, [&](Frame& frame, bool& rowsLeft) {
        Recordset rows;
        bool any = false;
        frame.step([&] { rows = openForBatch(assignmentQuery(eventKey)); });
        frame.step([&] { any = !rows.EOF_(); });
        if (any) {
            Recordset links;
            frame.step([&] {
                links = openForReading("SELECT * FROM DeviceRecipient WHERE RecipientKey = " +
                                       std::to_string(recipientKey));
            });
            while (links.state() == ObjectState::open && !links.EOF_() && rows.recordCount() > 0) {
                frame.step([&] { removeDevice(rows, links); });
                frame.step([&] { links.moveNext(); });
            }
            frame.step([&] { rows.updateBatch(); });
            frame.step([&] { links.close(); });
        }
        frame.step([&] { rowsLeft = rows.recordCount() >= 1; });
        frame.step([&] { rows.close(); });
    });
}

}  // namespace mdlDatabase
