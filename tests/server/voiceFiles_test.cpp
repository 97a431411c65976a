#include "server/voiceFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/files/files.h"
#include "support/childProcess.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using mdlUtility::copyFileToDatabaseDirectory;
using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using platform::files::readFile;
using platform::files::writeFile;

class VoiceFiles : public testing::Test {
  protected:
    VoiceFiles() {
        fs::create_directory(elsewhere);
        writeFile(chosen, "new");
    }

    void askClash(const std::string& name, BoxAnswer answer) {
        prompts.expect(
            {"A file with the same name (" + name +
                 ") already exists in the Database directory.\n\nSelect Yes to overwrite the "
                 "existing file, No to rename the selected file, or Cancel to not make any changes.",
             "Duplicate File Exists", BoxIcon::question, BoxButtons::yesNoCancel},
            answer);
    }
    void askOverwrite(const std::string& name, BoxAnswer answer) {
        prompts.expect(
            {"You have selected to overwrite the existing file: " + name +
                 "\nAll monitored events using the existing voicemail file will now be using this new "
                 "file.\n\nAre you sure you want to overwrite the existing file?",
             "Confirm Overwrite of Existing File.", BoxIcon::question, BoxButtons::yesNo},
            answer);
    }
    void askName(const std::string& present, std::optional<std::string> answer) {
        prompts.expectInput("Please enter a new name for this file?", "Rename voicemail file", present,
                            std::move(answer));
    }
    // Names and contents of the Database folder's files.
    std::vector<std::string> files() {
        std::vector<std::string> found;
        for (const auto& entry : platform::files::listFiles(host.databaseFolder()))
            if (entry.name != "QLNDB_FRESH.MDB")
                found.push_back(entry.name + "=" + readFile(host.databaseFolder() / entry.name));
        return found;
    }
    using Files = std::vector<std::string>;

    support::TemporaryHost host;
    support::ScriptedPrompts prompts;
    fs::path elsewhere = host.root() / "recordings";
    fs::path chosen = elsewhere / "call.wav";
};

TEST_F(VoiceFiles, CopiesAFreeNameAndNeverAFileOfTheFolderItself) {
    EXPECT_EQ(copyFileToDatabaseDirectory(elsewhere / "gone.wav"), "");
    EXPECT_EQ(copyFileToDatabaseDirectory(elsewhere), "");
    EXPECT_EQ(files(), Files{});
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "call.wav");
    EXPECT_EQ(files(), Files{"call.wav=new"});
    EXPECT_EQ(fs::status(host.databaseFolder() / "call.wav").permissions() & fs::perms::others_all,
              fs::perms::none);
    EXPECT_EQ(copyFileToDatabaseDirectory(host.databaseFolder() / "call.wav"), "call.wav");
    const fs::path otherCase = host.root() / "DATABASE";
    fs::create_directory(otherCase);
    writeFile(otherCase / "call.wav", "other");
    EXPECT_EQ(copyFileToDatabaseDirectory(otherCase / "call.wav"), "call.wav");
    EXPECT_EQ(files(), Files{"call.wav=new"});
}

TEST_F(VoiceFiles, NothingTakesThePlaceOfTheDatabase) {
    for (const char* name : {"QLNDB.MDB", "qlndb_bkp.mdb", "QLNDB_FRESH.MDB", "QlnDb.Mdb-journal"}) {
        writeFile(elsewhere / name, "a song");
        askName(name, std::nullopt);
        EXPECT_EQ(copyFileToDatabaseDirectory(elsewhere / name), "") << name;
    }
    askName("QLNDB.MDB", "song.wav");
    EXPECT_EQ(copyFileToDatabaseDirectory(elsewhere / "QLNDB.MDB"), "song.wav");
    // By way of a link it is the folder itself: nothing is copied over itself.
    fs::create_directory_symlink(host.databaseFolder(), elsewhere / "link");
    EXPECT_EQ(copyFileToDatabaseDirectory(elsewhere / "link" / "song.wav"), "song.wav");
}

TEST_F(VoiceFiles, SettlesAClashInEveryWay) {
    writeFile(host.databaseFolder() / "call.wav", "old");
    writeFile(host.databaseFolder() / "taken.wav", "old");
    askClash("call.wav", BoxAnswer::cancel);
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "");
    for (const std::optional<std::string>& nothing :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        askClash("call.wav", BoxAnswer::no);
        askName("call.wav", nothing);
        EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "");
    }
    EXPECT_EQ(files(), (Files{"call.wav=old", "taken.wav=old"}));

    // No at the confirmation leads to the new name; one that is taken brings the first question again.
    askClash("call.wav", BoxAnswer::yes);
    askOverwrite("call.wav", BoxAnswer::no);
    askName("call.wav", "taken.wav");
    askClash("taken.wav", BoxAnswer::no);
    askName("taken.wav", "Zoë.mp3");
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "Zoë.mp3");
    EXPECT_EQ(files(), (Files{"Zoë.mp3=new", "call.wav=old", "taken.wav=old"}));

    askClash("call.wav", BoxAnswer::yes);
    askOverwrite("call.wav", BoxAnswer::yes);
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "call.wav");
    EXPECT_EQ(files(), (Files{"Zoë.mp3=new", "call.wav=new", "taken.wav=old"}));
}

TEST_F(VoiceFiles, AsksAgainForANameThatIsNoneOfAFile) {
    writeFile(host.databaseFolder() / "call.wav", "old");
    const std::string longest(251, 'n');
    askClash("call.wav", BoxAnswer::no);
    std::string present = "call.wav";
    for (const std::string& name :
         {std::string("../call.wav"), std::string(".."), std::string("."), std::string("/elsewhere/call.wav"),
          std::string("a\\b.wav"), std::string("a\0.wav", 6), longest + ".wave"}) {
        askName(present, name);
        present = name;
    }
    askName(present, longest + ".wav");
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), longest + ".wav");
    EXPECT_EQ(files(), (Files{"call.wav=old", longest + ".wav=new"}));
    EXPECT_FALSE(fs::exists(host.root() / "call.wav"));
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(VoiceFiles, ReplacesALinkInsteadOfWritingThroughIt) {
    const fs::path outside = host.root() / "outside.wav";
    writeFile(outside, "precious");
    fs::create_symlink(outside, host.databaseFolder() / "call.wav");
    askClash("call.wav", BoxAnswer::yes);
    askOverwrite("call.wav", BoxAnswer::yes);
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "call.wav");
    EXPECT_EQ(readFile(outside), "precious");
    EXPECT_EQ(files(), Files{"call.wav=new"});
    EXPECT_FALSE(fs::is_symlink(host.databaseFolder() / "call.wav"));

    // A link that leads nowhere is a name that is taken, and nothing appears where it points to.
    fs::create_symlink(host.root() / "nowhere.wav", host.databaseFolder() / "second.wav");
    askClash("call.wav", BoxAnswer::no);
    askName("call.wav", "second.wav");
    askClash("second.wav", BoxAnswer::yes);
    askOverwrite("second.wav", BoxAnswer::yes);
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "second.wav");
    EXPECT_FALSE(fs::exists(host.root() / "nowhere.wav"));
}

TEST_F(VoiceFiles, AFailedCopyIsLoggedAndLeavesTheOldFileWhole) {
    const fs::path old = host.databaseFolder() / "call.wav";
    writeFile(old, "old", 0400);
    askClash("call.wav", BoxAnswer::yes);
    askOverwrite("call.wav", BoxAnswer::yes);
    EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "call.wav");
    EXPECT_EQ(host.countInLog("Err.Number = 70 "), 1);
    EXPECT_EQ(files(), Files{"call.wav=old"});

    const auto onFullDisk = [&] {
        writeFile(old, "old");
        askClash("call.wav", BoxAnswer::yes);
        askOverwrite("call.wav", BoxAnswer::yes);
        EXPECT_EQ(copyFileToDatabaseDirectory(chosen), "call.wav");
        EXPECT_EQ(host.countInLog("Err.Number = 61 "), 1);
        EXPECT_EQ(files(), Files{"call.wav=old"}) << "nothing half-written stays";
        EXPECT_TRUE(prompts.finished());
    };
    writeFile(chosen, std::string(1 << 20, 'x'));
    const support::Ran ran = support::runOnSmallDisk(host.databaseFolder(), 64, onFullDisk);
    if (ran == support::Ran::impossible)
        GTEST_SKIP() << "this user may not mount a small disk";
    EXPECT_EQ(ran, support::Ran::passed);
}

}  // namespace
