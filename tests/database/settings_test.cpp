#include "database/settings.h"

#include "storeFixture.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;

using Settings = databaseTest::Store;

constexpr char subject[] = "Meridane Corvane server <Type> event, <Source>[<Event>] on <Computer>";
constexpr char body[] =
    "Event Type:        <Type>\r\n"
    "Event Source:      <Source>\r\n"
    "Event Category:    <Category>\r\n"
    "Event ID:          <Event>\r\n"
    "Date:              <Date>\r\n"
    "Time:              <Time>\r\n"
    "User:              <User>\r\n"
    "Computer:          <Computer>\r\n"
    "Description:       \r\n"
    "<Description>\r\n"
    "Notes:             <Notes>";

TEST_F(Settings, AreOneRowEachAndEmptyWithoutOne) {
    EXPECT_EQ(getConfigurationSetting("New"), "");
    for (const char* value : {"-1", "O'Brien; \"x\" שלום 🚨\r\n", " padded ", ""}) {
        setConfigurationSetting("New", value);
        EXPECT_EQ(getConfigurationSetting("New"), value);
    }
    setConfigurationSetting("NEW", "other case");
    EXPECT_EQ(rows("SELECT * FROM Configuration WHERE Setting = 'New'"), Lines{"New|other case"});
    EXPECT_EQ(host.countInLog("Err.Number"), 0);

    run("UPDATE Configuration SET Value = NULL WHERE Setting = 'New'");
    EXPECT_EQ(getConfigurationSetting("New"), "");
    EXPECT_EQ(host.countInLog("[mdlDatabase]getConfigurationSetting)   Err.Number = 94 "), 1);
    setConfigurationSetting("New", "healed");
    EXPECT_EQ(getConfigurationSetting("New"), "healed");
}

TEST_F(Settings, LastKeyIsTheHighest) {
    EXPECT_EQ(getLastKey("Recipients", "RecipientKey"), 0);
    EXPECT_EQ(host.countInLog("[mdlDatabase]getLastKey)   Err.Number = 94 "), 1);
    run("INSERT INTO Recipients (RecipientKey) VALUES (70000), (3)");
    EXPECT_EQ(getLastKey("Recipients", "RecipientKey"), 70000);
    EXPECT_EQ(getLastKey("Recipients", "Colour"), 0);
    EXPECT_EQ(getLastKey("Nowhere", "RecipientKey"), 0);
}

TEST_F(Settings, DefaultContentComesFromSettingsOrElseFromTheStringTable) {
    EXPECT_EQ(getDefaultContent(voiceContent), (DefaultContent{"QLN_Default_ENU.wav", "", ""}));
    EXPECT_EQ(getDefaultContent(emailContent), (DefaultContent{"", subject, body}));
    for (const long none : {0L, 2L, 4L})
        EXPECT_EQ(getDefaultContent(none), DefaultContent());
    setConfigurationSetting("DefaultWavAttachment", "own.wav");
    setConfigurationSetting("DefaultEmailBody", "own body");
    EXPECT_EQ(getDefaultContent(voiceContent).voiceFile, "own.wav");
    EXPECT_EQ(getDefaultContent(emailContent), (DefaultContent{"", subject, "own body"}));
}

TEST_F(Settings, InitialChangesFillWhatIsEmptyAndKeepTheRest) {
    run("DELETE FROM Configuration");
    makeInitialDatabaseChanges();
    const Lines filled{"DefaultWavAttachment|QLN_Default_ENU.wav",
                       "DefaultEmailSubject|" + std::string(subject), "DefaultEmailBody|" + std::string(body),
                       "DefaultEmailPriority|1", "DefaultVoiceMailPriority|1"};
    const std::string everything = "SELECT * FROM Configuration ORDER BY rowid";
    EXPECT_EQ(rows(everything), filled);

    setConfigurationSetting("DefaultEmailSubject", "");
    setConfigurationSetting("DefaultEmailBody", "own");
    setConfigurationSetting("DefaultVoiceMailPriority", "0");
    makeInitialDatabaseChanges();
    EXPECT_EQ(rows(everything),
              (Lines{filled[0], filled[1], "DefaultEmailBody|own", filled[3], "DefaultVoiceMailPriority|0"}));
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

}  // namespace
