// Statements that hang together: whichever single write or read of an operation fails, what it leaves has no
// row that no window reaches, nothing twice, nothing that nobody was asked about, and no default in place of
// what could not be read.
#include <sqlite3.h>

#include <functional>

#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "database/settings.h"
#include "storeFixture.h"
#include "support/failingRead.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;

class AnyPrompts : public platform::Prompts {
  public:
    int boxes = 0;
    platform::BoxAnswer messageBox(const platform::MessageBox&) override {
        ++boxes;
        return platform::BoxAnswer::yes;
    }
    std::optional<std::string> inputBox(const std::string&, const std::string&, const std::string&) override {
        return {};
    }
    std::optional<std::string> openFile(const platform::FileQuestion&) override { return {}; }
};

struct Operation {
    const char* name;
    std::function<void()> run;
    bool keepsAssignments = false;  // of the event that there is
};

class HangTogether : public databaseTest::Store {
  protected:
    HangTogether() {
        platform::setPrompts(&yes_);
        // Nothing here outlives the process.
        sqlite3_exec(core::gDatabase.handle(), "PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    }
    ~HangTogether() override { platform::setPrompts(&prompts); }

    void fill() {
        std::string anew = "BEGIN;";
        for (const char* table : {"Events", "Contents", "Recipients", "Device", "DeviceRecipient",
                                  "EventDevice", "AddressDetails", "Exclusions"})
            anew += "DELETE FROM " + std::string(table) + ";";
        run(anew + "INSERT INTO Events(EventKey, EventCollection) VALUES (2, -1); COMMIT");
        event_ = addNewEvent({"Alarm", "4", "", 2, {"a.wav", 1, "s", "b", 1}});
        RecipientRecord record;
        record.name = "Ann";
        record.pagerNumbers = {{"", "1"}, {"", "2"}};
        record.smtpAddresses = {{"", "a@b"}};
        record.failoverEnabled = 1;
        recipient_ = addNewRecipient(record);
        rebuildAddressDetailsTable();
        run("INSERT INTO EventDevice SELECT " + std::to_string(event_) +
            ", DeviceKey, CASE DeviceType WHEN 7 THEN 0 ELSE -1 END FROM Device");
        addNewExclusion("Old", 1);
        addNewExclusion("Older", 2);
        selection_.clear();
        for (const std::string& key : rows("SELECT DeviceKey FROM Device"))
            selection_.set(selectionKey(std::stol(key)), true);
        yes_.boxes = 0;
    }

    std::string wrongRows() {
        return value(
            "SELECT (SELECT count(*) FROM EventDevice WHERE EventKey NOT IN (SELECT EventKey FROM Events) OR "
            "DeviceKey NOT IN (SELECT DeviceKey FROM Device)) || ' ' || "
            "(SELECT count(*) FROM Device WHERE DeviceKey NOT IN (SELECT DeviceKey FROM DeviceRecipient) OR "
            "DeviceAddress IS NULL) || ' ' || "
            "(SELECT count(*) FROM DeviceRecipient WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device) OR "
            "RecipientKey NOT IN (SELECT RecipientKey FROM Recipients)) || ' ' || "
            "(SELECT count(*) - count(DISTINCT DeviceKey) FROM AddressDetails) || ' ' || "
            "(SELECT count(*) - count(DISTINCT EventKey || ' ' || DeviceKey) FROM EventDevice) || ' ' || "
            "(SELECT count(*) - count(DISTINCT EventSource) FROM Exclusions) || ' ' || "
            "(SELECT count(*) FROM Contents WHERE EventKey NOT IN (SELECT EventKey FROM Events)) || ' ' || "
            "(SELECT 1 - count(*) FROM Events WHERE EventCollection) || ' ' || "
            "(SELECT count(*) - count(DISTINCT DeviceAddress) FROM Device)");
    }
    // What is there and came without a question.
    std::string unasked() {
        return yes_.boxes > 0 ? "0"
                              : value(
                                    "SELECT (SELECT count(*) FROM EventDevice JOIN Device USING(DeviceKey) "
                                    "WHERE DeviceType = 7 AND Active)");
    }
    std::vector<Operation> operations();

    long event_ = 0;
    long recipient_ = 0;
    DeviceSelection selection_;
    AnyPrompts yes_;
};

std::vector<Operation> HangTogether::operations() {
    std::vector<Operation> all;
    all.push_back({"delete recipient", [&] { deleteRecipient(recipient_); }});
    all.push_back({"delete event", [&] { deleteEvent(event_, "Alarm (4)"); }});
    all.push_back({"delete the catch-all event", [&] { deleteEvent(2, "All"); }, true});
    const auto change = [&] {
        RecipientRecord record;
        record.name = "Anna";
        record.smtpAddresses = {{"", "c@d"}};
        modifyRecipient(recipient_, record);
    };
    all.push_back({"change recipient", change});
    const auto add = [] {
        RecipientRecord record;
        record.name = "Ben";
        record.pagerNumbers = {{"", "3"}};
        addNewRecipient(record);
    };
    all.push_back({"new recipient", add, true});
    all.push_back({"new event", [] { addNewEvent({"Alarm", "5", "", 2, {"a.wav", 1, "s", "b", 1}}); }, true});
    all.push_back({"assign anew", [&] { addRecipientToEvent(event_, selection_, true); }, true});
    all.push_back({"change assignments", [&] { changeRecipientsForEvent(event_, selection_); }, true});
    const auto save = [&] {
        modifyEvent({event_, "Alarm", "6", "", 2, true, {"a.wav", 1, "s", "b", 1}});
        setEventActiveState(event_, true);
        setDefaultContentForEvent(event_);
    };
    all.push_back({"change event", save, true});
    all.push_back({"remove from event", [&] { removeRecipientFromEvent(event_, recipient_); }});
    const auto replace = [] {
        core::Dictionary<long> exclusions;
        exclusions.set("Old", -1);
        exclusions.set("New", -1);
        replaceExclusions(exclusions);
    };
    all.push_back({"replace exclusions", replace});
    all.push_back({"rebuild details", [] { rebuildAddressDetailsTable(); }, true});
    return all;
}

TEST_F(HangTogether, NoSingleFailingWriteLeavesARowThatNobodyReaches) {
    const Lines tables =
        rows("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'");
    for (const auto& [name, operation, keeps] : operations())
        for (const std::string& table : tables)
            for (const char* verb : {"INSERT", "UPDATE", "DELETE"}) {
                fill();
                run("CREATE TRIGGER held BEFORE " + std::string(verb) + " ON \"" + table +
                    "\" BEGIN SELECT raise(ABORT, 'held'); END");
                operation();
                run("DROP TRIGGER held");
                EXPECT_EQ(wrongRows(), "0 0 0 0 0 0 0 0 0") << name << ": " << verb << " " << table;
                EXPECT_EQ(unasked(), "0") << name << ": " << verb << " " << table;
            }
}

TEST_F(HangTogether, NorDoesASingleFailingRead) {
    for (const auto& [name, operation, keeps] : operations()) {
        SCOPED_TRACE(name);
        bool cameToIt = true;
        for (int number = 1; cameToIt; ++number) {
            fill();
            {
                const support::FailingRead read(number);
                operation();
                cameToIt = read.cameToIt();
            }
            EXPECT_EQ(wrongRows(), "0 0 0 0 0 0 0 0 0") << number;
            EXPECT_EQ(unasked(), "0") << number;
            if (keeps) {
                EXPECT_EQ(rows("SELECT count(*) FROM EventDevice"), Lines{"4"}) << number;
            }
            ASSERT_TRUE(number > 1 || cameToIt);
        }
    }
}

TEST_F(HangTogether, ATableIsNotEmptiedForWhatCannotBeRead) {
    fill();
    const Lines details = rows("SELECT * FROM AddressDetails");
    ASSERT_EQ(details.size(), 4u);
    run("ALTER TABLE Device RENAME TO Elsewhere");
    const long before = host.countInLog("ERROR", "rebuildAddressDetailsTable", "Err.Number");
    rebuildAddressDetailsTable();
    EXPECT_EQ(rows("SELECT * FROM AddressDetails"), details);
    EXPECT_EQ(host.countInLog("ERROR", "rebuildAddressDetailsTable", "Err.Number"), before + 1);
}

TEST_F(HangTogether, NoDefaultReplacesASettingThatCannotBeRead) {
    makeInitialDatabaseChanges();
    run("UPDATE Configuration SET Value = 'mine.wav' WHERE Setting = 'DefaultWavAttachment'");
    run("CREATE TABLE Kept AS SELECT * FROM Configuration; DROP TABLE Configuration;"
        // A table that can be written and not be read for a value.
        "CREATE VIEW Configuration AS SELECT Setting, abs(-9223372036854775807 - 1) AS Value FROM Kept");
    makeInitialDatabaseChanges();
    EXPECT_EQ(value("SELECT Value FROM Kept WHERE Setting = 'DefaultWavAttachment'"), "mine.wav");
    EXPECT_FALSE(readConfigurationSetting("DefaultWavAttachment").has_value());
}

TEST_F(HangTogether, AnExclusionThatIsTooLongIsNotStored) {
    const std::string source(51, 'x');
    addNewExclusion("fits", 1);
    EXPECT_EQ(addNewExclusion(source, -1), 0);
    core::Dictionary<long> exclusions;
    exclusions.set(source, -1);
    exclusions.set(std::string(50, 'y'), -1);
    EXPECT_EQ(rows("SELECT EventSource FROM Exclusions"), Lines{"fits"});
    replaceExclusions(exclusions);
    EXPECT_EQ(rows("SELECT EventSource FROM Exclusions"), Lines{std::string(50, 'y')});
}

}  // namespace
