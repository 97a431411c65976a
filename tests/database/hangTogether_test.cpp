// Writes that hang together: whichever single write of an operation fails, what it leaves has no row that no
// window reaches, nothing twice, and no default in place of what could not be read.
#include <functional>

#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "database/settings.h"
#include "storeFixture.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;

class AnyPrompts : public platform::Prompts {
  public:
    platform::BoxAnswer messageBox(const platform::MessageBox&) override { return platform::BoxAnswer::yes; }
    std::optional<std::string> inputBox(const std::string&, const std::string&, const std::string&) override {
        return {};
    }
    std::optional<std::string> openFile(const platform::FileQuestion&) override { return {}; }
};

class HangTogether : public databaseTest::Store {
  protected:
    HangTogether() { platform::setPrompts(&yes_); }
    ~HangTogether() override { platform::setPrompts(&prompts); }

    void fill() {
        for (const char* table : {"Events", "Contents", "Recipients", "Device", "DeviceRecipient",
                                  "EventDevice", "AddressDetails", "Exclusions"})
            run("DELETE FROM " + std::string(table));
        event_ = addNewEvent({"Alarm", "4", "", 2, {"a.wav", 1, "s", "b", 1}});
        RecipientRecord record;
        record.name = "Ann";
        record.pagerNumbers = {{"", "1"}, {"", "2"}};
        record.smtpAddresses = {{"", "a@b"}};
        recipient_ = addNewRecipient(record);
        rebuildAddressDetailsTable();
        run("INSERT INTO EventDevice SELECT " + std::to_string(event_) + ", DeviceKey, -1 FROM Device");
        addNewExclusion("Old", 1);
        addNewExclusion("Older", 2);
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
            "(SELECT count(*) - count(DISTINCT DeviceKey) FROM EventDevice) || ' ' || "
            "(SELECT count(*) - count(DISTINCT EventSource) FROM Exclusions) || ' ' || "
            "(SELECT count(*) FROM Contents WHERE EventKey NOT IN (SELECT EventKey FROM Events))");
    }

    long event_ = 0;
    long recipient_ = 0;

  private:
    AnyPrompts yes_;
};

TEST_F(HangTogether, NoSingleFailingWriteLeavesARowThatNobodyReaches) {
    DeviceSelection selection;
    const std::pair<const char*, std::function<void()>> operations[] =
        {
            {"delete recipient", [&] { deleteRecipient(recipient_); }},
            {"delete event", [&] { deleteEvent(event_, "Alarm (4)"); }},
            {"change recipient",
             [&] {
        RecipientRecord record;
        record.name = "Anna";
        record.smtpAddresses = {{"", "c@d"}};
        modifyRecipient(recipient_, record);
             }},
            {"new recipient",
             [&] {
        RecipientRecord record;
        record.name = "Ben";
        record.pagerNumbers = {{"", "3"}};
        addNewRecipient(record);
             }},
                                                        {"assign anew",
                                                         [&] {
        for (const std::string& key : rows("SELECT DeviceKey FROM Device"))
            selection.set(selectionKey(std::stol(key)), true);
        addRecipientToEvent(event_, selection, true);
                                                         }},
        {"replace exclusions",
         [] {
        core::Dictionary<long> exclusions;
        exclusions.set("Old", -1);
        exclusions.set("New", -1);
        replaceExclusions(exclusions);
         }},
        {"rebuild details", [] { rebuildAddressDetailsTable(); }},
        };
    const Lines tables =
        rows("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'");
    for (const auto& [name, operation] : operations)
        for (const std::string& table : tables)
            for (const char* verb : {"INSERT", "UPDATE", "DELETE"}) {
                fill();
                run("CREATE TRIGGER held BEFORE " + std::string(verb) + " ON \"" + table +
                    "\" BEGIN SELECT raise(ABORT, 'held'); END");
                selection.clear();
                operation();
                run("DROP TRIGGER held");
                EXPECT_EQ(wrongRows(), "0 0 0 0 0 0 0") << name << ": " << verb << " " << table;
            }
}

TEST_F(HangTogether, ATableIsNotEmptiedForWhatCannotBeRead) {
    fill();
    const Lines details = rows("SELECT * FROM AddressDetails");
    ASSERT_EQ(details.size(), 3u);
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
