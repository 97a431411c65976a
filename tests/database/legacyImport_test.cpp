#include "database/legacyImport.h"

#include <fstream>

#include "database/settings.h"
#include "storeFixture.h"

namespace {

using databaseTest::Lines;
using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

class LegacyImport : public databaseTest::Store {
  protected:
    LegacyImport() {
        mdlDatabase::makeInitialDatabaseChanges();
        std::filesystem::create_directory(folder());
        host.setRegistry("Software\\Tessaly\\Kesn", "DataPath", folder().string());
    }

    std::filesystem::path folder() const { return host.root() / "Kesn"; }
    std::filesystem::path file() const { return folder() / "KESN.MDB"; }

    // A legacy database with "key, name, value" rows besides those that every legacy event has.
    void makeLegacy(const std::string& rows) {
        std::ofstream(file()).close();
        support::run(file(),
                     "CREATE TABLE Properties(PropName TEXT(50) COLLATE NOCASE, PropVal TEXT(255), Key LONG);"
                     "INSERT INTO Properties(Key, PropName, PropVal) VALUES" +
                         rows);
    }
    void import() {
        mdlDatabase::importLegacyEvents([](std::string_view source) { return source != "Gone"; });
    }
    Lines imported() { return rows("SELECT EventSource, EventId FROM Events WHERE EventKey > 2"); }
    void expectTold(const std::string& text, const std::string& title, BoxIcon icon) {
        prompts.expect({text, title, icon, BoxButtons::ok}, BoxAnswer::ok);
    }
};

TEST_F(LegacyImport, BringsEventsOverInTheOrderOfTheirKeysAndAsksAboutThemTheSecondTime) {
    mdlDatabase::setConfigurationSetting("DefaultEmailSubject", "on <Computer>");
    mdlDatabase::setConfigurationSetting("DefaultWavAttachment", "call.wav");
    makeLegacy(
        "(20, 'Source', 'Tape Drive'), (20, 'EventId', '7'), (20, 'Pager', '555'),"
        "(3, 'EventId', '-1'), (3, 'Source', 'Disk'),"
        "(9, 'Source', 'Gone'), (9, 'EventId', '12'), (11, 'EventId', '4')");
    const auto size = std::filesystem::file_size(file());
    const auto written = std::filesystem::last_write_time(file());
    const auto expectGone = [&] {
        expectTold(
            "Event Source: Gone is not a valid source on this server.  This entry will not be "
            "imported.\nEntry - Gone 12",
            "Invalid Source", BoxIcon::information);
    };
    expectGone();
    import();
    EXPECT_EQ(
        rows("SELECT EventSource, EventId, EventTitle, EventType, EventActive FROM Events "
             "WHERE EventKey > 2 ORDER BY EventKey"),
        (Lines{"Disk|-1|Imported from KESN service|1|0", "Tape Drive|7|Imported from KESN service|1|0"}));
    EXPECT_EQ(rows("SELECT ContentType, ContentAttachment, ContentPriority, ContentSubject FROM Contents "
                   "WHERE EventKey = 3 ORDER BY ContentType"),
              (Lines{"1|call.wav|1|on <Computer>", "3|NULL|1|on <Computer>"}));
    EXPECT_EQ(value("SELECT Count(*) FROM EventDevice"), "0");

    const auto expectDuplicate = [&](const std::string& event, BoxAnswer answer) {
        prompts.expect({"A duplicate of this event source and id was found.\nEvent Source: " + event +
                            "\n\nAre you sure you want to create this event?",
                        "Duplicate Monitored Event", BoxIcon::question, BoxButtons::yesNo},
                       answer);
    };
    expectDuplicate("Disk   Event Id:-1", BoxAnswer::no);
    expectGone();
    expectDuplicate("Tape Drive   Event Id:7", BoxAnswer::yes);
    import();
    EXPECT_EQ(imported(), (Lines{"Disk|-1", "Tape Drive|7", "Tape Drive|7"}));
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
    EXPECT_EQ(std::filesystem::file_size(file()), size);
    EXPECT_EQ(std::filesystem::last_write_time(file()), written) << "the legacy database is only read";
}

TEST_F(LegacyImport, ADoubtfulRowEndsItBeforeAnythingIsWritten) {
    const std::string good = "(1, 'Source', 'Disk'), (1, 'EventId', '7'), (2, 'Source', 'Tape'), ";
    for (const auto& [bad, number] :
         {std::pair("(2, 'Source', 'Tape')", "457"), std::pair("(1, 'EventId', '8')", "457"),
          std::pair("(2, 'EventId', NULL)", "94")}) {
        std::filesystem::remove(file());
        forgetLog();
        makeLegacy(good + bad);
        import();
        EXPECT_EQ(imported(), Lines{}) << bad;
        const Lines log = logOf("importLegacyEvents");
        ASSERT_EQ(log.size(), 1u) << bad;
        EXPECT_TRUE(log[0].starts_with("ERROR: Err.Number = " + std::string(number) + " ")) << log[0];
    }
}

// An event that cannot be written does not lose the others.
TEST_F(LegacyImport, AnEventWithoutAUsableIdIsLeftOut) {
    makeLegacy(
        "(1, 'Source', 'Disk'), (2, 'Source', 'Tape'), (2, 'EventId', '99999999999'),"
        "(3, 'Source', 'Fan'), (3, 'EventId', '1')");
    import();
    EXPECT_EQ(imported(), Lines{"Fan|1"});
}

TEST_F(LegacyImport, SaysWhyNothingIsImported) {
    const std::string connection = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file().string();
    const auto expectUnreadable = [&] {
        expectTold(
            "Error opening " + file().string() + " with " + connection + "\nNo events will be imported.",
            "Error opening KESN database", BoxIcon::information);
    };
    const auto expectNone = [&] {
        expectTold("No events found to import.", "No existing events found.", BoxIcon::none);
    };
    expectUnreadable();
    import();
    std::ofstream(file()) << std::string(5000, 'x');
    expectUnreadable();
    import();
    std::filesystem::remove(file());
    makeLegacy("(1, 'Pager', '555')");
    expectNone();
    import();
    support::run(file(), "DROP TABLE Properties");
    expectNone();
    import();
    host.setRegistry("Software\\Tessaly\\Kesn", "DataPath", std::string());
    import();
    EXPECT_EQ(imported(), Lines{});
}

}  // namespace
