// What lies in a host and is not what it should be: pipes in place of files, links in place of folders,
// states that name somebody else's process, files of another owner. Nothing waits for it, nothing foreign is
// touched.
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/files/files.h"
#include "platform/files/textStream.h"
#include "platform/libraries/chmFile.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/eventLogPages.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "platform/services/serviceLock.h"
#include "platform/services/serviceState.h"
#include "support/adoFixture.h"

namespace {

namespace fs = std::filesystem;
using adoTest::failureOf;

TEST(Foreign, APipeIsRefusedByNameAndNotWaitedFor) {
    const support::TemporaryHost host;
    const fs::path pipe = host.root() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::string text;
    EXPECT_EQ(failureOf([&] { platform::files::readFile(pipe); }, &text), platform::pathFileAccessError);
    EXPECT_NE(text.find(pipe.string() + " is no ordinary file"), std::string::npos) << text;
    EXPECT_NE(failureOf([&] { platform::TextStream().open(pipe); }), 0);
    EXPECT_NE(failureOf([&] { platform::ChmFile::open(pipe); }), 0);
    platform::Connection connection;
    EXPECT_EQ(failureOf([&] { connection.open(adoTest::openString(pipe.string())); }),
              platform::providerError);
    fs::create_directories(platform::host::directoryDatabase().parent_path());
    ASSERT_EQ(::mkfifo(platform::host::directoryDatabase().c_str(), 0600), 0);
    EXPECT_EQ(failureOf([&] { connection.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb"); }),
              platform::providerError);
    fs::remove(platform::host::registryFile());
    ASSERT_EQ(::mkfifo(platform::host::registryFile().c_str(), 0600), 0);
    EXPECT_NE(failureOf([] { platform::registry().keyExists("HKEY_LOCAL_MACHINE\\Software"); }), 0);
}

TEST(Foreign, AFolderThatIsALinkIsNoFolderOfOurs) {
    const support::TemporaryHost host;
    const fs::path elsewhere = host.root() / "elsewhere";
    fs::create_directory(elsewhere);
    for (const fs::path& folder : {platform::host::servicesFolder(), platform::host::eventLogsFolder()}) {
        fs::remove_all(folder);
        fs::create_directory_symlink(elsewhere, folder);
    }
    EXPECT_FALSE(platform::files::isOwnFolder(platform::host::servicesFolder()));
    EXPECT_EQ(
        failureOf([] { platform::writeServiceState("svc", platform::ServiceState::running, ::getpid()); }),
        platform::permissionDenied);
    platform::EventRecord record;
    record.log = "System";
    EXPECT_EQ(failureOf([&] { platform::appendEvent(record); }), platform::permissionDenied);
    EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST(Foreign, ALinkInPlaceOfALogIsNotWrittenTo) {
    const support::TemporaryHost host;
    const fs::path precious = host.root() / "precious";
    platform::files::writeFile(precious, "precious");
    for (const char* target : {"precious", "notThere"}) {
        fs::create_symlink(target, host.root() / "link.LOG");
        EXPECT_EQ(failureOf([&] { platform::TextStream().open(host.root() / "link.LOG"); }),
                  platform::pathFileAccessError);
        fs::remove(host.root() / "link.LOG");
    }
    EXPECT_EQ(platform::files::readFile(precious), "precious");
    EXPECT_FALSE(fs::exists(host.root() / "notThere"));
}

TEST(Foreign, AReplacedFileKeepsItsOwnerAndANewOneIsTheFolders) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser writes other people's files";
    constexpr uid_t somebody = 12345;
    const support::TemporaryHost host;
    const fs::path folder = host.root() / "theirs";
    fs::create_directory(folder);
    ASSERT_EQ(::chown(folder.c_str(), somebody, somebody), 0);
    const auto ownerOf = [](const fs::path& path) {
        struct stat status {};
        return ::lstat(path.c_str(), &status) == 0 ? status.st_uid : 0;
    };
    platform::files::writeFile(folder / "new", "x");
    platform::files::createFolder(folder / "inner");
    platform::TextStream().open(folder / "log");
    EXPECT_EQ(ownerOf(folder / "new"), somebody);
    EXPECT_EQ(ownerOf(folder / "log"), somebody);
    EXPECT_EQ(ownerOf(folder / "inner"), somebody);
    ASSERT_EQ(::chown((folder / "new").c_str(), 54321, 54321), 0);
    platform::files::writeFile(folder / "new", "y");
    EXPECT_EQ(ownerOf(folder / "new"), 54321u);

    // What stays beside a store, a log or a service would lock its owner out as well.
    platform::Registry(folder / "store").createKey("HKEY_LOCAL_MACHINE\\A");
    EXPECT_EQ(ownerOf(folder / "store.lock"), somebody);
    for (const fs::path& own : {platform::host::eventLogsFolder(), platform::host::servicesFolder()}) {
        fs::create_directories(own);
        ASSERT_EQ(::chown(own.c_str(), somebody, somebody), 0);
        ASSERT_EQ(::chown(own.parent_path().c_str(), somebody, somebody), 0);
    }
    platform::EventRecord record;
    record.log = "System";
    platform::appendEvent(record);
    EXPECT_EQ(ownerOf(platform::eventLogFile("System")), somebody);
    const platform::ServiceLock lock("svc");
    EXPECT_EQ(ownerOf(platform::host::servicesFolder() / "svc.lock"), somebody);
}

TEST(Foreign, AStateThatNamesAnotherProgramsProcessEndsNobody) {
    const support::TemporaryHost host;
    const pid_t victim = ::fork();
    if (victim == 0) {
        ::execlp("sleep", "sleep", "60", nullptr);
        ::_exit(1);
    }
    ASSERT_GT(victim, 0);
    ::usleep(100'000);
    platform::writeServiceState("svc", platform::ServiceState::running, victim);
    const auto record = platform::readServiceRecord("svc");
    ASSERT_TRUE(record && platform::isAlive(*record));
    EXPECT_FALSE(platform::signalService(*record, SIGTERM, "/bin/true"));
    EXPECT_EQ(::waitpid(victim, nullptr, WNOHANG), 0) << "it lives";
    EXPECT_TRUE(platform::signalService(*record, SIGTERM, "/bin/sleep"));
    EXPECT_EQ(::waitpid(victim, nullptr, 0), victim);
}

TEST(EventLogPages, ReadALogFromItsEndWithLinesOfAnyLength) {
    const support::TemporaryHost host;
    EXPECT_FALSE(platform::EventLogPages("System").hasEarlier());
    platform::EventRecord record;
    record.log = "System";
    record.time = "2026-11-25 07:00:00";
    for (unsigned id = 0; id < 50; ++id) {
        record.id = id;
        record.description = std::string(id == 20 ? 5000 : 10, 'x');
        platform::appendEvent(record);
    }
    std::ofstream(platform::eventLogFile("System"), std::ios::app) << "torn";
    platform::EventLogPages pages("System", 300);
    unsigned expected = 50;
    std::uint64_t place = ~std::uint64_t{0};
    while (pages.hasEarlier())
        for (const platform::PlacedEvent& event : pages.earlier()) {
            EXPECT_EQ(event.record.id, --expected);
            EXPECT_LT(event.place, place);
            place = event.place;
        }
    EXPECT_EQ(expected, 0u);
    EXPECT_EQ(place, 0u);
}

TEST(CaseFold, FoldsEveryScriptAndKeepsWhatIsNoText) {
    using platform::foldCase;
    EXPECT_EQ(foldCase("QLNTest_1"), "qlntest_1");
    EXPECT_EQ(foldCase("GRÖSSE ЖЁ"), foldCase("größe жё").replace(4, 2, "ss"));
    EXPECT_EQ(foldCase("ΟΔΟΣ"), foldCase("οδος"));
    EXPECT_EQ(foldCase("οδος"), foldCase("οδοσ"));
    EXPECT_EQ(foldCase("A\xff\xc3(\xe2\x82"), "a\xff\xc3(\xe2\x82");
    EXPECT_EQ(foldCase("\xf0\x9f\x98\x80"), "\xf0\x9f\x98\x80");
}

}  // namespace
