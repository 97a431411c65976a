// Any text in any field: stored and read back as it is, and never run as a statement.
#include <gtest/gtest.h>

#include <string>

#include "core/state.h"
#include "database/events.h"
#include "database/settings.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"

namespace {

using support::query;

const std::string texts[] = {
    "",
    " ",
    "'",
    "O'Brien's \"Alarm\"",
    "''; DELETE FROM Events; --",
    "x'; DROP TABLE Configuration; --",
    "') UNION SELECT 1; UPDATE Events SET EventActive = -1; --",
    "100% _ * ? [a-z] # ~ ` \\ | & ^ $$",
    "#1/2/2026 3:04:05 AM# and [Name] and 31Sources and :a ?1 @b $c",
    "<Type> %s %n {0} &amp; <b>",
    "line\nline\r\nline\rtab\tend\v\f",
    "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xd9\x85\xd8\xb1\xd8\xad\xd8\xa8\xd8\xa7 \xe2\x80\xae right to left",
    "\xf0\x9f\x93\x9f \xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x94\xa7 e\xcc\x81 \xef\xbb\xbf \xe2\x80\x8b",
    std::string("a\0b", 3),
    std::string(100'000, 'x') + "'",
};

constexpr const char* settings[] = {"EventNotificationInterval",
                                    "PollingInterval",
                                    "ReportDataAging",
                                    "MaxDiag",
                                    "DefaultWavAttachment",
                                    "DefaultEmailSubject",
                                    "DefaultEmailBody",
                                    "OutputFilePath",
                                    "DefaultEmailPriority",
                                    "DefaultVoiceMailPriority",
                                    "WarnOnDuplicateMonitoredEvents"};

class AnyText : public ::testing::Test {
  protected:
    AnyText() { host.openConfiguration(); }

    // Everything that a second statement in the texts above would change.
    std::vector<std::string> bystanders() {
        return query(host.databaseFile(),
                     "SELECT EventKey, EventActive FROM Events WHERE EventKey <= 2 UNION ALL SELECT "
                     "count(*), 0 FROM sqlite_master UNION ALL SELECT count(*), 0 FROM Configuration");
    }
    static void expectContent(long key, const std::string& text) {
        auto event = mdlDatabase::getEvent(key);
        EXPECT_EQ(event.text("EventSource"), text);
        EXPECT_EQ(event.text("EventTitle"), text);
        auto contents = mdlDatabase::getContentsForEvent(key);
        ASSERT_EQ(contents.recordCount(), 2);
        EXPECT_EQ(contents.text("ContentAttachment"), text);
        for (; !contents.EOF_(); contents.moveNext()) {
            EXPECT_EQ(contents.text("ContentSubject"), text);
            EXPECT_EQ(contents.text("ContentNote"), text);
        }
    }

    support::TemporaryHost host;
};

TEST_F(AnyText, IsStoredInEveryFieldOfAnEventAndReadBack) {
    mdlDatabase::setConfigurationSetting("WarnOnDuplicateMonitoredEvents", "0");
    const auto before = bystanders();
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.substr(0, 80));
        const mdlDatabase::EventContent content{text, 1, text, text, 1};
        const long added = mdlDatabase::addNewEvent({text, "17", text, 1, content});
        ASSERT_GT(added, 2);
        expectContent(added, text);
        const long changed = mdlDatabase::addNewEvent({"plain", "18", "plain", 1, {"a", 1, "b", "c", 1}});
        mdlDatabase::modifyEvent({changed, text, "18", text, 2, false, content});
        expectContent(changed, text);
        support::ScriptedPrompts prompts;
        prompts.expect({"Are your sure you want to delete event: " + text, "Delete Selected Event?",
                        platform::BoxIcon::question, platform::BoxButtons::yesNo},
                       platform::BoxAnswer::yes);
        EXPECT_TRUE(mdlDatabase::deleteEvent(added, text));
        EXPECT_FALSE(mdlDatabase::isEventActive(changed));
    }
    EXPECT_EQ(bystanders(), before);
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(AnyText, IsStoredInEverySettingAndReadBack) {
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.substr(0, 80));
        for (const char* setting : settings) {
            mdlDatabase::setConfigurationSetting(setting, text);
            EXPECT_EQ(mdlDatabase::getConfigurationSetting(setting), text) << setting;
        }
        // An empty setting counts as unset.
        const auto mail = mdlDatabase::getDefaultContent(mdlDatabase::emailContent);
        if (!text.empty()) {
            EXPECT_EQ(mdlDatabase::getDefaultContent(mdlDatabase::voiceContent).voiceFile, text);
            EXPECT_EQ(mail.subject, text);
            EXPECT_EQ(mail.body, text);
        }
    }
    EXPECT_EQ(query(host.databaseFile(), "SELECT count(*) FROM Configuration"),
              std::vector<std::string>{std::to_string(std::size(settings))});
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

// Sources and names of settings stand in the statement as they are: one with an apostrophe makes it fail,
// and what follows the apostrophe is never run.
TEST_F(AnyText, FailsInASearchThatItBreaksAndRunsNothing) {
    mdlDatabase::setConfigurationSetting("WarnOnDuplicateMonitoredEvents", "0");
    const long key = mdlDatabase::addNewEvent({"O'Brien", "17", "", 1, {}});
    mdlDatabase::setConfigurationSetting("WarnOnDuplicateMonitoredEvents", "-1");
    const auto before = bystanders();
    long failures = 0;
    const auto expectFailure = [&](const std::string& text) {
        EXPECT_GE(host.countInLog("Err.Number = -2147217900"), ++failures) << text;
        EXPECT_EQ(bystanders(), before) << text;
    };
    for (const char* text :
         {"O'Brien", "x'; DELETE FROM Events; --", "x'; DROP TABLE Configuration; SELECT '",
          "'; ATTACH DATABASE 'other.db' AS other; --"}) {
        EXPECT_EQ(mdlDatabase::findEvent(text, "17"), -1);
        expectFailure(text);
        EXPECT_EQ(mdlDatabase::getConfigurationSetting(text), "");
        expectFailure(text);
        const long written = host.countInLog("Err.Number = -2147217900");
        mdlDatabase::setConfigurationSetting(text, "value");
        EXPECT_EQ(host.countInLog("Err.Number = -2147217900"), written + 1) << text;
        failures = written + 1;
        EXPECT_EQ(bystanders(), before) << text;
    }
    for (const char* id : {"", "x", "1; DELETE FROM Events", "17; UPDATE Events SET EventActive = -1"}) {
        EXPECT_EQ(mdlDatabase::findEvent("Backup", id), -1) << id;
        EXPECT_EQ(bystanders(), before) << id;
    }
    // So a duplicate with an apostrophe in its source is not noticed.
    support::ScriptedPrompts noBox;
    EXPECT_GT(mdlDatabase::addNewEvent({"O'Brien", "17", "", 1, {}}), key);
    // Without an apostrophe nothing breaks, whatever else is there.
    const std::string odd = "\"; DELETE FROM Events; -- % [x] \xf0\x9f\x93\x9f\n";
    const long found = mdlDatabase::addNewEvent({odd, "17", "", 1, {}});
    EXPECT_EQ(mdlDatabase::findEvent(odd, "17"), found);
}

}  // namespace
