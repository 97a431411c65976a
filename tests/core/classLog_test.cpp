#include "core/classLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <regex>

#include "platform/ado/ado.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::vector<std::string> linesOf(const std::string& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

long countIn(const std::string& file, const std::string& text) {
    const auto lines = linesOf(file);
    return std::ranges::count_if(
        lines, [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

std::chrono::system_clock::time_point localMoment(int year, int month, int day, int hour, int minute,
                                                  int second) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = -1;
    return std::chrono::system_clock::from_time_t(std::mktime(&parts));
}

class Log : public testing::Test {
  protected:
    void SetUp() override { clock.set(localMoment(2026, 11, 16, 6, 5, 9)); }

    void makeFile(const std::string& name, int daysOld, std::uintmax_t size = 0) {
        fs::create_directories(folder);
        std::ofstream(folder / name).flush();
        fs::resize_file(folder / name, size);
        const auto moment = clock.now() - std::chrono::days(daysOld);
        fs::last_write_time(folder / name, std::chrono::file_clock::from_sys(moment));
    }

    support::TemporaryHost host;
    support::ManualClock clock;
    fs::path folder = host.programFolder() / "LOGS";
};

TEST_F(Log, HeaderAndLinesHaveTheirForm) {
    core::classLog log;
    EXPECT_EQ(log.strLogFile(), (folder / "QLNAdmin_20261116_060509.LOG").string());
    log.enterProc("[mdlMain]Main");
    log.log("text", core::logInfo, "[mdlMain]Main");
    log.log("no tag", core::logWarning, "");
    log.log("long tag", core::logError, std::string(45, 'x') + "lost");
    log.log("version", core::logVersionInfo, "t");
    clock.sleep(1500ms);
    log.exitProc("[mdlMain]Main");

    const auto lines = linesOf(log.strLogFile());
    ASSERT_EQ(lines.size(), 11u);
    EXPECT_EQ(lines[0], "");
    EXPECT_EQ(lines[1], std::string(120, '*'));
    EXPECT_EQ(lines[2], "QLNAdmin Version: 0.0.0   Started: 11/16/2026 6:05:09 AM");
    EXPECT_EQ(lines[3], std::string(120, '*'));
    const std::regex retention(
        "06:05:09    Info:\\( {20}\\[classLog\\]checkSizeOfLogs\\) Removing logs older than "
        "1[0-9]+/[0-9]+/2026 "
        "6:05:09 AM - Log Directory Size: 0\\. MB   [0-9,]* MB Free   [0-9,]* MB Total ");
    EXPECT_TRUE(std::regex_match(lines[4], retention)) << lines[4];
    const std::string mainTag = std::string(32, ' ') + "[mdlMain]Main) ";
    EXPECT_EQ(lines[5], "06:05:09    Info:(" + mainTag + "Entering [mdlMain]Main_0");
    EXPECT_EQ(lines[6], "06:05:09    Info:(" + mainTag + "  text");
    EXPECT_EQ(lines[7], "06:05:09 Warning:(" + std::string(45, ' ') + ")   no tag");
    EXPECT_EQ(lines[8], "06:05:09   ERROR:(" + std::string(45, 'x') + ")   long tag");
    EXPECT_EQ(lines[9], "06:05:09 VerInfo:(" + std::string(44, ' ') + "t)   version");
    EXPECT_EQ(lines[10], "06:05:10    Info:(" + mainTag +
                             "Exiting  [mdlMain]Main_0 Start: 21909 End: 21910.5 - Elapsed: 1.5");
}

TEST_F(Log, TheWordDebugAmongTheArgumentsSendsLinesToTheDebuggerToo) {
    const auto shown = [](const char* argument) {
        const char* const arguments[] = {"/opt/debug/QLNAdmin", "first", argument};
        platform::program::setCommandLine(3, arguments);
        testing::internal::CaptureStderr();
        core::classLog().log("text", core::logInfo, "[mdlTest]work");
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(shown("last"), "") << "a folder of that name is no argument";
    EXPECT_NE(shown("/NoDeBugger").find("QLNAdmin:([mdlTest]work) text\n"), std::string::npos);
    platform::program::setCommandLine(0, nullptr);
}

TEST_F(Log, InstancesNestAndAnUnmatchedExitIsHarmless) {
    const std::string tag = "[mdlTest]" + std::string(50, 'p');
    core::classLog log;
    log.exitProc(tag);
    clock.set(localMoment(2026, 11, 16, 23, 59, 59));
    log.enterProc(tag);
    log.enterProc(tag);
    log.exitProc(tag);
    clock.sleep(2s);
    log.exitProc(tag);
    log.log("depth", core::logInfo, "t");

    std::vector<std::string> texts;
    for (const std::string& line : linesOf(log.strLogFile()))
        if (line.size() > 65 && line[2] == ':')
            texts.push_back(line.substr(65));
    ASSERT_EQ(texts.size(), 7u);
    EXPECT_EQ(texts[1], "Exiting  " + tag + "_-1");
    EXPECT_EQ(texts[2], "Entering " + tag + "_0");
    EXPECT_EQ(texts[3], "  Entering " + tag + "_1");
    EXPECT_EQ(texts[4], "  Exiting  " + tag + "_1 Start: 86399 End: 86399 - Elapsed: 0.0");
    EXPECT_EQ(texts[5], "Exiting  " + tag + "_0 Start: 86399 End: 1 - Elapsed: -86398.0");
    EXPECT_EQ(texts[6], "depth");
}

TEST_F(Log, RetentionFollowsTheFreeSpace) {
    EXPECT_EQ(core::logRetentionDays(500'000'001), 30);
    EXPECT_EQ(core::logRetentionDays(500'000'000), 14);
    EXPECT_EQ(core::logRetentionDays(100'000'000), 14);
    EXPECT_EQ(core::logRetentionDays(99'999'999), 10);
}

TEST_F(Log, OldLogsGoAndReadOnlyOnesAreReported) {
    makeFile("old.LOG", 40, 12'340'000);
    makeFile("LOGBOOK.txt", 40);
    makeFile("old.log", 40);
    makeFile("young.LOG", 9);
    // More of them than a procedure could bear.
    constexpr int protectedLogs = 12;
    for (int i = 0; i < protectedLogs; ++i) {
        makeFile("protected" + std::to_string(i) + ".LOG", 40);
        platform::files::setReadOnly(folder / ("protected" + std::to_string(i) + ".LOG"), true);
    }
    const core::classLog log;
    EXPECT_FALSE(fs::exists(folder / "old.LOG"));
    EXPECT_FALSE(fs::exists(folder / "LOGBOOK.txt"));
    EXPECT_TRUE(fs::exists(folder / "old.log"));
    EXPECT_TRUE(fs::exists(folder / "young.LOG"));
    EXPECT_TRUE(fs::exists(folder / "protected11.LOG"));
    EXPECT_EQ(countIn(log.strLogFile(), "Log Directory Size: 12.3 MB   "), 1);
    EXPECT_EQ(countIn(log.strLogFile(), "[classLog]checkSizeOfLogs) Err.Number = 70 Err.Description = "),
              protectedLogs);
}

TEST_F(Log, ALogThatCannotBeWrittenIsLostQuietly) {
    std::ofstream(host.root() / "file").flush();
    core::classLog log(host.root() / "file" / "LOGS");
    EXPECT_NO_THROW(log.enterProc("[mdlTest]work"));
    EXPECT_NO_THROW(log.log("lost", core::logError, "t"));
    EXPECT_NO_THROW(log.exitProc("[mdlTest]work"));

    // Nor does it go to where a link leads.
    const fs::path elsewhere = host.root() / "elsewhere";
    fs::create_directory(elsewhere);
    fs::create_directory_symlink(elsewhere, folder);
    core::classLog().log("lost", core::logError, "t");
    EXPECT_TRUE(fs::is_empty(elsewhere));

    // As soon as there is a place for it, it begins with its header.
    log.setStrLogFile((host.root() / "late.LOG").string());
    log.log("found", core::logError, "t");
    const auto lines = linesOf(log.strLogFile());
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_TRUE(lines[4].ends_with(") found"));
}

TEST_F(Log, TextIsCutBeforeWhatTheEncodingLacks) {
    core::classLog log;
    log.log(
        "Gr\xC3\xBC\xC3\x9F"
        "e\xFF and more",
        core::logInfo, "t");
    log.log("torn \xC3", core::logInfo, "t");
    log.log("\xFF", core::logInfo, "t");
    log.log("whole \xE2\x82\xAC", core::logInfo, "t");
    const auto lines = linesOf(log.strLogFile());
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_TRUE(
        lines[5].ends_with(") Gr\xC3\xBC\xC3\x9F"
                           "e"));
    EXPECT_TRUE(lines[6].ends_with(") torn "));
    EXPECT_TRUE(lines[7].ends_with("t) "));
    EXPECT_TRUE(lines[8].ends_with(") whole \xE2\x82\xAC"));
}

TEST_F(Log, AnExistingFileIsAppendedToAndClosingStartsANewOne) {
    core::classLog first;
    core::classLog second;
    EXPECT_EQ(first.strLogFile(), second.strLogFile());
    EXPECT_EQ(countIn(first.strLogFile(), " Version: "), 2);

    clock.sleep(1s);
    second.closeLog();
    second.log("next", core::logInfo, "t");
    EXPECT_EQ(second.strLogFile(), (folder / "QLNAdmin_20261116_060510.LOG").string());
    EXPECT_EQ(linesOf(second.strLogFile()).size(), 5u);
}

TEST_F(Log, DumpsShowNamesAndValues) {
    host.makeDirectory({"CREATE TABLE T (Name TEXT, Number INTEGER)", "INSERT INTO T VALUES ('x', 7)"});
    platform::Connection connection;
    connection.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb");
    platform::Recordset rows;
    core::classLog log;
    log.dumpRecordsets(rows, "t");
    rows.open("SELECT * FROM T", connection, platform::CursorType::staticCursor);
    log.dumpRecordsets(rows, "t");
    log.dumpDictionary({{"a", "1"}, {"inner", std::nullopt}}, "t");
    log.dumpCommandObject("SELECT", {{"p", "2"}}, "t");
    EXPECT_FALSE(rows.EOF_());
    const auto has = [&](const std::string& text) { return countIn(log.strLogFile(), "t) " + text); };
    EXPECT_EQ(has("Object Recordset Dump"), 1);
    EXPECT_EQ(has("Name" + std::string(32, ' ') + "x"), 1);
    EXPECT_EQ(has("Number" + std::string(30, ' ') + "7"), 1);
    EXPECT_EQ(has(std::string(52, ' ') + "a    1"), 1);
    EXPECT_EQ(has(std::string(48, ' ') + "inner    Dictionary..."), 1);
    EXPECT_EQ(has("p" + std::string(34, ' ') + "2"), 1);
}

}  // namespace
