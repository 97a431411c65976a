#include "server/executeApp.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/temporaryHost.h"

namespace {

using mdlUtility::ExecuteApp;

TEST(ExecuteApp, ReturnsWhatACommandWrites) {
    const support::TemporaryHost host;
    EXPECT_EQ(ExecuteApp("/bin/sh -c \"echo out; echo error >&2; printf 'a b'\""), "out\nerror\na b");
    EXPECT_EQ(ExecuteApp("/bin/true"), "");
    const std::string much = ExecuteApp("/usr/bin/head -c 67108864 /dev/zero");
    EXPECT_EQ(much.size(), 64u << 20);
    EXPECT_EQ(host.countInLog("failed"), 0);
}

TEST(ExecuteApp, WaitsForTheOutputNotForTheCommand) {
    const support::TemporaryHost host;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ExecuteApp("/bin/sh -c \"echo early; exec >&- 2>&-; sleep 3\""), "early\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(ExecuteApp, LogsACommandThatCannotBeStarted) {
    const support::TemporaryHost host;
    EXPECT_EQ(ExecuteApp("\"" + (host.root() / "no such program").string() + "\" -service"), "");
    EXPECT_EQ(ExecuteApp((host.databaseFolder() / "QLNDB_FRESH.MDB").string()), "");
    EXPECT_EQ(ExecuteApp(""), "");
    for (const char* error : {"2", "5", "87"})
        EXPECT_EQ(host.countInLog("ERROR", "ExecuteApp",
                                  "CreateProcess "
                                  "failed. Error: " +
                                      std::string(error)),
                  1)
            << error;
}

}  // namespace
