// A demonstration host in use: what its administrator has entered, what its service has told and goes on
// telling.
#include <QtTest/QTest>

#include "database/exclusions.h"
#include "database/recipients.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "service/decision/monitoring.h"
#include "support/demonstration.h"
#include "ui/widgets/keyedGrid.h"

namespace {

using support::Lines;
using support::query;

class LivingHost : public support::Demonstration {
  protected:
    LivingHost() : Demonstration("--failover") {}

    // Rows of a query whose first field is a key: the other field with what the function says of the key.
    template <class State>
    Lines states(const std::string& statement, State (*stateOf)(long)) {
        Lines lines;
        for (const std::string& row : rows(statement))
            lines.push_back(row.substr(row.find('|') + 1) + ": " + std::to_string(stateOf(std::stol(row))));
        return lines;
    }
};

TEST_F(LivingHost, ComesUpWithoutABoxOnItsListOfEvents) {
    EXPECT_TRUE(prompts.finished()) << "and no other box has come";
    const auto* grid = gMainWindow->findChild<ui::KeyedGrid*>("vsflexgridMonitoredEvents");
    ASSERT_TRUE(grid->isVisible());
    ASSERT_EQ(grid->gridRowCount(), 5);
    EXPECT_EQ(grid->cellText(3, "EventTitle"), "Store away: wake the duty manager");
    EXPECT_NE(grid->cellText(3, "EventLastNotification"), "");
    const std::string services = qlnhost("services");
    for (const char* line :
         {"HbQlnSvc         running, last look ", "TsHubMgr         running\n", "TsKesnSvr        running\n"})
        EXPECT_NE(services.find(line), std::string::npos) << services;
    EXPECT_TRUE(mdlUtility::myStopService("TsHubMgr"));
}

TEST_F(LivingHost, IsMonitoredAsItsAdministratorWantsIt) {
    // 0 complete, 1 incomplete, 2 inactive.
    EXPECT_EQ(states("SELECT RecipientKey, RecipientName FROM Recipients ORDER BY RecipientKey",
                     mdlDatabase::getRecipientState),
              (Lines{"Night desk: 0", "Anneliese Almeida: 0", "Field engineers: 0", "Log host: 0",
                     "Former archivist: 1", "Holiday cover: 2", "Standby server: 0"}));
    EXPECT_EQ(states("SELECT EventKey, EventSource || ' ' || EventId || ' ' || EventType FROM Events"
                     " WHERE EventKey > 1 ORDER BY EventKey",
                     mdlDatabase::getEventState),
              (Lines{"MeridaneCorvane -1 1: 0", "MeridaneCorvane_MessageStore 4711 1: 0",
                     "MeridaneCorvane_Telephony 120 1: 0", "MeridaneCorvane_SwitchLink 2210 2: 1",
                     "MeridaneCorvane_License 1003 4: 2"}));
    EXPECT_EQ(rows("SELECT EventKey, RecipientName, DisplayName, Active FROM EventDevice JOIN DeviceRecipient"
                   " USING (DeviceKey) JOIN Recipients USING (RecipientKey) JOIN AddressDetails"
                   " USING (DeviceKey) ORDER BY EventKey, DeviceKey"),
              (Lines{"2|Night desk|Duty Managers (Distribution List)|-1",
                     "2|Night desk|night.desk@example.net (SMTP Address)|-1",
                     "3|Night desk|Duty Managers (Distribution List)|-1",
                     "3|Night desk|night.desk@example.net (SMTP Address)|-1", "3|Log host| (SYSLOG)|-1",
                     "4|Anneliese Almeida|Anneliese Almeida (Subscriber)|-1",
                     "4|Anneliese Almeida|Anneliese Almeida (Subscriber)|-1",
                     "5|Field engineers|Field Engineers (Distribution List)|0"}));
    EXPECT_EQ(rows("SELECT * FROM Exclusions"),
              (Lines{"0|MeridaneCorvane_Telephony|120", "1|MeridaneCorvane_AudioText|-1"}));
    EXPECT_EQ(query(platform::host::directoryDatabase(),
                    "SELECT DisplayName FROM Subscriber WHERE DtmfAccessId = '2054' AND SubscriberType <= 3"),
              Lines{"Anneliese Almeida"});
    // Every row that stands for another has it, and every event its two contents.
    EXPECT_EQ(
        rows("SELECT (SELECT count(*) FROM EventDevice WHERE EventKey NOT IN (SELECT EventKey FROM Events)"
             " OR DeviceKey NOT IN (SELECT DeviceKey FROM Device)),"
             "(SELECT count(*) FROM Device WHERE 1 <> (SELECT count(*) FROM DeviceRecipient AS Link"
             " JOIN Recipients USING (RecipientKey) WHERE Link.DeviceKey = Device.DeviceKey)),"
             "(SELECT count(*) FROM Events WHERE 2 <> (SELECT count(DISTINCT ContentType) FROM Contents"
             " WHERE Contents.EventKey = Events.EventKey AND ContentNote <> '')),"
             "(SELECT count(*) FROM DeviceRecipient), (SELECT count(*) FROM Contents)"),
        Lines{"0|0|0|10|12"});
}

TEST_F(LivingHost, HasAHistoryThatFitsItsLogsAndGoesOn) {
    constexpr auto interval = std::chrono::minutes(15);
    const auto now = std::chrono::system_clock::now();
    EXPECT_GT(now - service::momentOfStored(rows("SELECT EventLastNotification FROM Events"
                                                 " WHERE EventId = 4711")[0])
                        .value(),
              interval);
    // The service tells of what was written after its start: two devices for each of two records.
    ASSERT_TRUE(QTest::qWaitFor([&] { return rows("SELECT * FROM NotificationLog").size() == 18; }, 10000));
    EXPECT_EQ(rows("SELECT DISTINCT EventSource, EventID FROM NotificationLog WHERE LogKey > 14 ORDER BY 2"),
              (Lines{"MeridaneCorvane_MailRouter|88", "MeridaneCorvane_Telephony|120"}));
    const std::string mail = qlnhost("mail");
    EXPECT_NE(mail.find("night.desk@example.net                   1 new"), std::string::npos) << mail;
    EXPECT_NE(mail.find("aalmeida@"), std::string::npos) << mail;

    const auto records = platform::readEvents("Application");
    for (const std::string& row :
         rows("SELECT LogTime || '|' || EventSource || ' ' || EventID FROM NotificationLog")) {
        const auto told = service::momentOfStored(row.substr(0, row.find('|'))).value();
        EXPECT_TRUE(std::ranges::any_of(records, [&](const platform::EventRecord& record) {
            const auto age = told - service::momentOfStored(record.time).value();
            return row.ends_with('|' + record.source + ' ' + std::to_string(record.id)) &&
                   age >= std::chrono::seconds(0) && age < std::chrono::seconds(10);
        })) << row;
    }
    EXPECT_TRUE(std::ranges::is_sorted(records, {}, &platform::EventRecord::time));
    EXPECT_GT(now - service::momentOfStored(records.front().time).value(), std::chrono::hours(72));
    const auto has = [&](const char* source, unsigned id) {
        return std::ranges::any_of(records, [&](const platform::EventRecord& record) {
            return record.source == source && record.id == id;
        });
    };
    EXPECT_TRUE(has("BackupAgent", 57) && has("MeridaneCorvane_CallMgr", 412) && has("DiskQuota", 36));
    EXPECT_EQ(qlnhost("explain Application BackupAgent 57 error"),
              "No monitored event has this source and id.\n");
}

}  // namespace
