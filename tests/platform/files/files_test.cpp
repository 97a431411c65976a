#include "platform/files/files.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "platform/files/textStream.h"
#include "support/adoFixture.h"

namespace {

using namespace platform::files;
namespace fs = std::filesystem;
using adoTest::failureOf;
using Names = std::vector<std::string>;

class Files : public testing::Test {
  protected:
    fs::path at(const std::string& name) { return folder.path() / name; }
    fs::path make(const std::string& name, const std::string& content = "x") {
        std::ofstream(at(name), std::ios::binary) << content;
        return at(name);
    }
    Names names() {
        Names result;
        for (const Entry& entry : listFiles(folder.path()))
            result.push_back(entry.name);
        return result;
    }

    adoTest::Folder folder;
};

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

// The number of the failure that the action raises in a process of its own, after `prepare`; 0 without one.
template <class Prepare, class Action>
long failureInChild(Prepare&& prepare, Action&& action) {
    const pid_t child = ::fork();
    if (child == 0) {
        prepare();
        ::_exit(static_cast<int>(failureOf(action)));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr uid_t ordinaryUser = 65534;
constexpr int notDropped = 200;

void becomeOrdinary() {
    if (::geteuid() == 0 && ::setuid(ordinaryUser) != 0)
        ::_exit(notDropped);
}

TEST_F(Files, FailuresHaveTheirNumbers) {
    const fs::path file = make("file");
    const fs::path missing = at("missing");
    const fs::path nowhere = at("nowhere") / "file";
    const fs::path below = file / "below";
    const fs::path sub = at("sub");
    createFolder(sub);
    const std::pair<long, std::function<void()>> table[] = {
        {53, [&] { copyFile(missing, at("target")); }},
        {53, [&] { readFile(missing); }},
        {53, [&] { deleteFile(missing, true); }},
        {53, [&] { isReadOnly(missing); }},
        {53, [&] { setReadOnly(missing, true); }},
        {76, [&] { copyFile(nowhere, at("target")); }},
        {76, [&] { copyFile(file, nowhere); }},
        {76, [&] { copyFile(file, below); }},
        {76, [&] { readFile(nowhere); }},
        {76, [&] { writeFile(nowhere, "x"); }},
        {76, [&] { createFolder(nowhere); }},
        {76, [&] { listFiles(missing); }},
        {76, [&] { listFiles(file); }},
        {76, [&] { diskSpace(missing); }},
        {58, [&] { createFolder(sub); }},
        {58, [&] { createFolder(file); }},
        {75, [&] { copyFile(sub, at("target")); }},
        {75, [&] { copyFile(file, sub); }},
        {75, [&] { readFile(sub); }},
        {75, [&] { writeFile(sub, "x"); }},
        {70, [&] { deleteFile(sub, true); }},
    };
    for (std::size_t i = 0; i < std::size(table); ++i)
        EXPECT_EQ(failureOf(table[i].second), table[i].first) << "case " << i;
    EXPECT_EQ(names(), Names{"file"}) << "nothing is left beside a target";
    EXPECT_GE(diskSpace(file).totalBytes, diskSpace(file).freeBytes);
}

TEST_F(Files, CopyIsWholeOrTheOldTargetStays) {
    std::string content(200'001, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 >> 3);
    const fs::path source = make("source", content);
    ::chmod(source.c_str(), 0755);
    copyFile(source, at("new"));
    EXPECT_EQ(readFile(at("new")), content);
    EXPECT_EQ(modeOf(at("new")), 0700u);

    const fs::path target = make("target", "old");
    ::chmod(target.c_str(), 0444);
    EXPECT_EQ(failureOf([&] { copyFile(source, target); }), 70);
    EXPECT_EQ(readFile(target), "old");
    ::chmod(target.c_str(), 0640);
    const auto limitSize = [] {
        const rlimit limit{100'000, 100'000};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    EXPECT_EQ(failureInChild(limitSize, [&] { copyFile(source, target); }), 75);
    EXPECT_EQ(failureInChild(limitSize, [&] { writeFile(target, content); }), 75);
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(names(), (Names{"new", "source", "target"}));
    copyFile(source, target);
    EXPECT_EQ(readFile(target), content);
    EXPECT_EQ(modeOf(target), 0640u);
}

TEST_F(Files, ReadOnlyIsTheOwnersWriteBit) {
    const fs::path file = make("file");
    ::chmod(file.c_str(), 0664);
    EXPECT_FALSE(isReadOnly(file));
    setReadOnly(file, true);
    EXPECT_TRUE(isReadOnly(file));
    EXPECT_EQ(modeOf(file), 0444u);
    EXPECT_EQ(failureOf([&] { writeFile(file, "y"); }), 70);
    EXPECT_EQ(failureOf([&] { deleteFile(file); }), 70);
    EXPECT_EQ(readFile(file), "x");
    fs::create_symlink(file, at("link"));
    deleteFile(at("link"));
    EXPECT_TRUE(fileExists(file));
    deleteFile(file, true);
    EXPECT_FALSE(fileExists(file));
    setReadOnly(make("again"), true);
    setReadOnly(at("again"), false);
    deleteFile(at("again"));
    EXPECT_EQ(names(), Names{});
}

TEST_F(Files, ListHoldsRegularFilesByName) {
    make("b", "12345");
    make("B");
    make("a10");
    make("a9");
    createFolder(at("folder"));
    fs::create_symlink(at("b"), at("c"));
    fs::create_symlink(at("gone"), at("d"));
    EXPECT_EQ(names(), (Names{"B", "a10", "a9", "b", "c"}));
    EXPECT_EQ(listFiles(folder.path())[3].size, 5u);
    const auto moment = std::chrono::system_clock::now() - std::chrono::hours(50);
    fs::last_write_time(at("B"), std::chrono::file_clock::from_sys(moment));
    EXPECT_LT(listFiles(folder.path())[0].modified - moment, std::chrono::milliseconds(1));
    EXPECT_TRUE(fileExists(at("c")) && !fileExists(at("d")) && !fileExists(at("folder")));
    EXPECT_TRUE(folderExists(at("folder")) && !folderExists(at("b")));
    EXPECT_EQ(modeOf(at("folder")), 0700u);
}

TEST_F(Files, ContentIsReadUpToItsLimitAndReplacedWhole) {
    const std::string content(70'000, 'x');
    writeFile(at("file"), content);
    EXPECT_EQ(modeOf(at("file")), 0600u);
    EXPECT_EQ(readFile(at("file"), 70'000), content);
    EXPECT_EQ(failureOf([&] { readFile(at("file"), 69'999); }), 75);
    writeFile(at("file"), "", 0640);
    EXPECT_EQ(readFile(at("file"), 0), "");
    EXPECT_EQ(modeOf(at("file")), 0640u);
}

TEST_F(Files, StreamAppendsWholeTexts) {
    platform::TextStream stream;
    EXPECT_EQ(failureOf([&] { stream.write("x"); }), 424);
    EXPECT_EQ(failureOf([&] { stream.open(at("nowhere") / "log"); }), 76);
    EXPECT_FALSE(stream.isOpen());
    stream.open(at("log"));
    EXPECT_EQ(modeOf(at("log")), 0600u);
    stream.write("one\n");
    platform::TextStream other;
    other.open(at("log"));
    other.write("two שלום 🚨\n");
    for (const char* broken : {"\xFF", "cut \xE2\x82", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"})
        EXPECT_EQ(failureOf([&] { stream.write(broken); }), 5) << broken;
    stream.write("three\n");
    EXPECT_EQ(readFile(at("log")), "one\ntwo שלום 🚨\nthree\n");
    stream.close();
    EXPECT_EQ(failureOf([&] { stream.write("x"); }), 424);
    stream.open("/dev/full");
    EXPECT_EQ(failureOf([&] { stream.write("x"); }), 61);
}

TEST_F(Files, OrdinaryUsersMeetPermissions) {
    if (failureInChild(becomeOrdinary, [] {}) == notDropped)
        GTEST_SKIP() << "this process passes every permission and cannot become another user";
    const uid_t owner = ::geteuid() == 0 ? ordinaryUser : ::geteuid();
    const auto give = [&](const fs::path& path, mode_t mode) {
        ASSERT_EQ(::chown(path.c_str(), owner, static_cast<gid_t>(-1)), 0);
        ::chmod(path.c_str(), mode);
    };
    createFolder(at("closed"));
    createFolder(at("fixed"));
    give(folder.path(), 0700);
    give(make("secret"), 0);
    give(make("log"), 0400);
    give(make("fixed/file"), 0600);
    give(at("fixed"), 0500);
    make("closed/file");
    give(at("closed"), 0);
    std::vector<std::function<void()>> denied{
        [&] { readFile(at("secret")); },
        [&] { copyFile(at("secret"), at("target")); },
        [&] { platform::TextStream().open(at("log")); },
        [&] { writeFile(at("fixed/new"), "x"); },
        [&] { writeFile(at("fixed/file"), "x"); },
        [&] { createFolder(at("fixed/new")); },
        [&] { deleteFile(at("fixed/file"), true); },
        [&] { readFile(at("closed/file")); },
        [&] { listFiles(at("closed")); },
    };
    // What belongs to somebody else shows no missing bit beforehand: the system refuses.
    createFolder(at("foreign"));
    ASSERT_EQ(::chown(at("foreign").c_str(), ::geteuid(), static_cast<gid_t>(-1)), 0);
    ::chmod(at("foreign").c_str(), 0755);
    if (owner != ::geteuid()) {
        denied.push_back([&] { writeFile(at("foreign/new"), "x"); });
        denied.push_back([&] { createFolder(at("foreign/new")); });
        denied.push_back([&] { setReadOnly(at("foreign"), true); });
    }
    for (std::size_t i = 0; i < denied.size(); ++i)
        EXPECT_EQ(failureInChild(becomeOrdinary, denied[i]), 70) << "case " << i;
    const auto seesNothing = [&] {
        if (fileExists(at("closed/file")) || folderExists(at("closed/file")))
            throw platform::makeFailure(1);
    };
    EXPECT_EQ(failureInChild(becomeOrdinary, seesNothing), 0);
    EXPECT_EQ(failureInChild(becomeOrdinary, [&] { copyFile(at("log"), at("copy")); }), 0);
    ::chmod(at("closed").c_str(), 0700);
    ::chmod(at("fixed").c_str(), 0700);
}

}  // namespace
