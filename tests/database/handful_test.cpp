// What one statement tells of all is what the operation for a single key tells of each, over random
// databases.
#include <algorithm>
#include <random>
#include <set>

#include "database/assignment.h"
#include "database/devices.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "storeFixture.h"

namespace {

using namespace mdlDatabase;

class Handful : public databaseTest::Store {
  protected:
    void fillAtRandom(unsigned seed) {
        std::mt19937 random(seed);
        const auto below = [&](unsigned bound) { return std::to_string(random() % bound); };
        const auto flag = [&] { return random() % 3 == 0 ? std::string("0") : std::string("-1"); };
        std::string all = "BEGIN;";
        for (const char* table : {"Recipients", "Device", "DeviceRecipient", "EventDevice", "AddressDetails"})
            all += "DELETE FROM " + std::string(table) + ";";
        all += "DELETE FROM Events WHERE EventKey > 2;";
        for (int i = 1; i <= 8; ++i)
            all += "INSERT INTO Recipients VALUES(" + std::to_string(i) + ", 'R" + below(5) + "', " + flag() +
                   ");";
        for (int i = 1; i <= 20; ++i) {
            const std::string key = std::to_string(i), address = "'a" + below(15) + "'";
            all += "INSERT INTO Device VALUES(" + key + ", " + std::to_string(1 + random() % 7) + ", " +
                   address + ", " + flag() + ");";
            if (random() % 8 != 0)
                all += "INSERT INTO DeviceRecipient VALUES(" + key + ", " + std::to_string(1 + random() % 9) +
                       ");";
            if (random() % 6 != 0)
                all +=
                    "INSERT INTO AddressDetails VALUES(" + address + ", 'n', " + below(5) + ", " + key + ");";
        }
        for (int i = 3; i <= 12; ++i) {
            const std::string key = std::to_string(i);
            all +=
                "INSERT INTO Events(EventKey, EventTitle, EventSource, EventId, EventType, EventActive, "
                "EventCollection) "
                "VALUES(" +
                key + ", 't', 's', 1, 1, " + flag() + ", 0);";
            std::set<std::string> used;
            for (auto n = random() % 5; n > 0; --n)
                if (const std::string device = std::to_string(1 + random() % 20); used.insert(device).second)
                    all += "INSERT INTO EventDevice VALUES(" + key + ", " + device + ", " + flag() + ");";
        }
        run(all + "COMMIT");
    }
};

TEST_F(Handful, StatesAndDevicesOfAllAreThoseOfEach) {
    int states[3] = {};
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        fillAtRandom(seed);
        const std::set<long> thatNotify = eventsThatNotify();
        platform::Recordset events = getEvents();
        for (; !events.EOF_(); events.moveNext()) {
            const long state = getEventState(events.number("EventKey"));
            EXPECT_EQ(stateOfEvent(events, thatNotify), state) << events.number("EventKey");
            ++states[state];
        }
        const std::set<long> unresolved = recipientsWithInvalidDevices();
        const auto devices = devicesOfAllRecipients();
        const DeviceCounts counts = countDevicesByRecipient().value();
        platform::Recordset recipients = getRecipients();
        for (; !recipients.EOF_(); recipients.moveNext()) {
            const long key = recipients.number("RecipientKey");
            EXPECT_EQ(stateOfRecipient(recipients, unresolved), getRecipientState(key)) << key;
            std::vector<std::string> each, ofAll;
            for (platform::Recordset rows = openDevicesForRecipient(key); !rows.EOF_(); rows.moveNext())
                each.push_back(rows.text("DeviceType") + " " + rows.text("DeviceKey") +
                               rows.text("DeviceAddress"));
            if (const auto found = devices.find(key); found != devices.end())
                for (const RecipientDevice& device : found->second)
                    ofAll.push_back(std::to_string(device.type) + " " + std::to_string(device.key) +
                                    device.address);
            std::ranges::sort(each);
            std::ranges::sort(ofAll);
            EXPECT_EQ(ofAll, each) << key;
            const auto counted = counts.find(key);
            EXPECT_EQ(counted == counts.end() ? 0 : counted->second[allDeviceTypes],
                      countDevices(allDeviceTypes, key));
        }
    }
    for (const int count : states)
        EXPECT_GT(count, 10) << "every state was drawn";
}

}  // namespace
