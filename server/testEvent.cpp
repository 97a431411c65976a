#include "server/testEvent.h"

#include <chrono>
#include <cstdint>
#include <string>

#include "core/procedure.h"
#include "core/state.h"
#include "database/assignment.h"
#include "database/events.h"
#include "platform/machine/clock.h"
#include "platform/machine/eventLog.h"

namespace mdlUtility {

namespace {

// Time for the service to see the hidden event's new devices before the event comes.
constexpr std::chrono::milliseconds untilTheServiceSees{500};

void selectDevices(core::Frame& frame, long recipientKey, mdlDatabase::DeviceSelection& selection) {
    platform::Recordset rows;
    bool atEnd = true;
    frame.step([&] {
        rows.open(
            "SELECT DeviceKey FROM DeviceRecipient WHERE RecipientKey = " + std::to_string(recipientKey),
            core::gDatabase, platform::CursorType::staticCursor, platform::LockType::readOnly,
            platform::CursorLocation::client);
        atEnd = rows.EOF_();
    });
    while (!atEnd) {
        frame.step([&] { selection.set(mdlDatabase::selectionKey(rows.number("DeviceKey")), true); });
        frame.step([&] {
            rows.moveNext();
            atEnd = rows.EOF_();
        });
    }
}

void writeTestEvent() {
    constexpr std::uint16_t information = 4;
    platform::EventRecord record;
    record.log = "Application";
    record.source = "QLNTest";
    record.id = 10001;
    record.type = information;
    platform::appendEvent(record);
}

}  // namespace

void generateTestEventLogMessage(long recipientKey) {
    core::procedure("mdlUtility", "generateTestEventLogMessage", [&](core::Frame& frame) {
        mdlDatabase::DeviceSelection selection;
        selectDevices(frame, recipientKey, selection);
        // With another one's devices still on the hidden event the test would reach him, and might force a
        // failover that nobody agreed to.
        bool prepared = false;
        frame.step(
            [&] { prepared = mdlDatabase::addRecipientToEvent(core::gIgnoreEventKey, selection, true); });
        if (!prepared)
            return;
        frame.step([] { mdlDatabase::setDefaultContentForEvent(core::gIgnoreEventKey); });
        frame.step([] { mdlDatabase::setEventActiveState(core::gIgnoreEventKey, true); });
        frame.step([] { platform::clock().sleep(untilTheServiceSees); });
        frame.step([] { writeTestEvent(); });
    });
}

}  // namespace mdlUtility
