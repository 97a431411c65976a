// Odd inputs without end: whatever is clicked, typed, pasted and deleted behind the console's back, no
// handler throws, nothing crashes, and the database holds no row that no window reaches. QLN_MONKEY_SEED
// replays one run; QLN_MONKEY_INPUTS and QLN_MONKEY_RUNS ask for more of them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "core/state.h"
#include "database/addressDetails.h"
#include "database/events.h"
#include "database/recipients.h"
#include "database/settings.h"
#include "monkey.h"
#include "support/serviceHost.h"
#include "support/temporaryHost.h"
#include "ui/base/messageBoxes.h"
#include "ui/shell/frmMain.h"
#include "ui/shell/windowServices.h"

namespace {

namespace fs = std::filesystem;

unsigned fromEnvironment(const char* name, unsigned otherwise) {
    const char* text = std::getenv(name);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

class OneRun {
  public:
    OneRun() {
        platform::setPrompts(&boxes_);
        core::gCorvaneFourOrLater = core::gSnmpSupported = core::gFailoverSupported = true;
        core::gProductName = "Quillon Service";
        const std::string sources = "System\\CurrentControlSet\\Services\\EventLog\\Application\\";
        for (const char* source : {"Alarm", "Backup", "Cluster", "MeridaneCorvane_A", "MeridaneCorvane_B"})
            host_.setRegistry(sources + source, "EventMessageFile", source);
        for (const char* code : {"DEU", "FRA"})
            fs::copy_file(fs::path(LIBRARY_FOLDER) / ("QLNbrandingres_" + std::string(code) + ".dll"),
                          host_.programFolder() / ("QLNbrandingres_" + std::string(code) + ".dll"));
        host_.openConfiguration();
        mdlDatabase::makeInitialDatabaseChanges();
        core::gIgnoreEventKey = mdlDatabase::getIgnoreEventKey();
        for (const char* source : {"Alarm", "Backup", "Elsewhere"})
            mdlDatabase::addNewEvent({source, "4", "notes", 2, {"a.wav", 1, "subject", "body", 1}});
        for (const char* name : {"Ana", "Ben", "Cy"}) {
            mdlDatabase::RecipientRecord record;
            record.name = name;
            record.smtpAddresses = {{"", "a@b"}, {"", "c@d"}};
            record.syslogEnabled = true;
            record.syslogHostAddress = "host";
            mdlDatabase::addNewRecipient(record);
        }
        mdlDatabase::rebuildAddressDetailsTable();
        run("INSERT INTO EventDevice SELECT 3, DeviceKey, -1 FROM Device;"
            "INSERT INTO Exclusions(EventSource, EventId) VALUES('Alarm', 1), ('Backup', -1)");
    }
    ~OneRun() { platform::setPrompts(nullptr); }

    void let(unsigned seed, int inputs) {
        frmMain window;
        window.loadNavigationTree();
        window.selectNode(window.nodeAt(1));
        window.show();
        monkey::Monkey monkey(seed, window, [this](unsigned random) { deleteSomething(random); });
        monkey.run(inputs);
        if (testing::Test::HasFailure())
            ADD_FAILURE() << qPrintable(monkey.lastInputs().join("\n"));
    }

    void check() {
        using Lines = std::vector<std::string>;
        EXPECT_EQ(support::query(host_.databaseFile(), "PRAGMA integrity_check"), Lines{"ok"});
        const std::pair<const char*, const char*> wrong[] = {
            {"assignments of no event", "EventDevice WHERE EventKey NOT IN (SELECT EventKey FROM Events)"},
            {"assignments of no device", "EventDevice WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device)"},
            {"devices of nobody", "Device WHERE DeviceKey NOT IN (SELECT DeviceKey FROM DeviceRecipient)"},
            {"links to no device", "DeviceRecipient WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device)"},
            {"links to nobody",
             "DeviceRecipient WHERE RecipientKey NOT IN (SELECT RecipientKey FROM Recipients)"},
            {"contents of no event", "Contents WHERE EventKey NOT IN (SELECT EventKey FROM Events)"},
            {"events without a source", "Events WHERE EventSource IS NULL OR EventSource = ''"},
            {"devices without an address", "Device WHERE DeviceAddress IS NULL"}};
        for (const auto& [what, rows] : wrong)
            EXPECT_EQ(support::query(host_.databaseFile(), "SELECT count(*) FROM " + std::string(rows)),
                      Lines{"0"})
                << what;
    }

  private:
    void run(const std::string& statements) { support::run(host_.databaseFile(), statements); }
    // Whole things, as a second console would: never the built-in rows.
    void deleteSomething(unsigned random) {
        const std::string pick = " ORDER BY 1 LIMIT 1 OFFSET " + std::to_string(random % 3) + ")";
        switch (random / 3 % 3) {
            case 0: {
                const std::string key = "(SELECT EventKey FROM Events WHERE EventKey > 2" + pick;
                run("CREATE TEMP TABLE gone AS SELECT " + key +
                    " AS k; DELETE FROM Contents WHERE EventKey = "
                    "(SELECT k FROM gone); DELETE FROM EventDevice WHERE EventKey = (SELECT k FROM gone); "
                    "DELETE FROM Events WHERE EventKey = (SELECT k FROM gone)");
                break;
            }
            case 1:
                run("CREATE TEMP TABLE gone AS SELECT (SELECT RecipientKey FROM Recipients" + pick +
                    " AS k; DELETE FROM EventDevice WHERE DeviceKey IN (SELECT DeviceKey FROM "
                    "DeviceRecipient "
                    "WHERE RecipientKey = (SELECT k FROM gone)); DELETE FROM Device WHERE DeviceKey IN "
                    "(SELECT "
                    "DeviceKey FROM DeviceRecipient WHERE RecipientKey = (SELECT k FROM gone)); DELETE FROM "
                    "DeviceRecipient WHERE RecipientKey = (SELECT k FROM gone); DELETE FROM Recipients WHERE "
                    "RecipientKey = (SELECT k FROM gone)");
                break;
            default:
                run("DELETE FROM Exclusions WHERE ExclusionKey = (SELECT ExclusionKey FROM Exclusions" +
                    pick);
        }
    }

    support::ServiceHost host_;
    support::FastClock clock_;
    ui::MessageBoxes boxes_;
    ui::WindowServices services_;
};

TEST(MonkeyRuns, LeaveTheDatabaseWhole) {
    const unsigned inputs = fromEnvironment("QLN_MONKEY_INPUTS", 700);
    const unsigned runs = fromEnvironment("QLN_MONKEY_RUNS", 4);
    const bool replayed = std::getenv("QLN_MONKEY_SEED") != nullptr;
    const unsigned first = fromEnvironment("QLN_MONKEY_SEED", 1);
    for (unsigned seed = first; seed < first + (replayed ? 1 : runs); ++seed) {
        SCOPED_TRACE("QLN_MONKEY_SEED=" + std::to_string(seed));
        OneRun run;
        run.let(seed, static_cast<int>(inputs));
        run.check();
        if (HasFailure())
            return;
    }
}

}  // namespace
