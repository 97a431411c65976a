#include "core/procedure.h"

#include <gtest/gtest.h>

#include <source_location>
#include <stdexcept>

#include "core/classLog.h"
#include "platform/machine/host.h"
#include "support/processEnd.h"
#include "support/temporaryHost.h"

namespace {

using core::Frame;
using core::procedure;

class Procedure : public testing::Test {
  protected:
    support::TemporaryHost host;
};

// A procedure with that many failing steps; gives the number of steps begun, negative when it came to its
// end.
long failingSteps(int count) {
    return procedure("mdlTest", "work", 0L, [&](Frame& frame, long& result) {
        for (int i = 0; i < count; ++i) {
            ++result;
            frame.step([] { throw platform::Failure(53, "File not found"); });
        }
        result = -result;
    });
}

TEST_F(Procedure, TenFailuresPassAndTheEleventhAbandonsTheCall) {
    EXPECT_EQ(failingSteps(10), -10);
    EXPECT_EQ(host.countInLog("ERROR:("), 10);
    EXPECT_EQ(host.countInLog("[mdlTest]work)   Err.Number = 53 Err.Description = File not found Line: "),
              10);
    EXPECT_EQ(host.countInLog("Exiting  [mdlTest]work_0"), 1);

    EXPECT_EQ(failingSteps(20), 11);
    EXPECT_EQ(host.countInLog(" Line: "), 20);
    EXPECT_EQ(host.countInLog("Exiting"), 1);
    const auto lines = host.logLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_TRUE(lines[lines.size() - 2].ends_with("Err.Number = 53 Err.Description = File not found"));
    EXPECT_TRUE(lines.back().ends_with("Error count exceeded, forcing exit from [mdlTest]work"));

    // The count is the call's own. The abandoned call stays open in the log, hence the next instance.
    EXPECT_EQ(failingSteps(10), -10);
    EXPECT_EQ(host.countInLog("Exiting  [mdlTest]work_1 Start: "), 1);
}

TEST_F(Procedure, EveryStepIsAttemptedAndTheResultIsWhatTheBodyMade) {
    int ran = 0;
    const std::string result =
        procedure("mdlTest", "work", std::string(), [&](Frame& frame, std::string& text) {
            frame.step([&] { ++ran; });
            frame.step([&] { throw std::out_of_range("vector"); });
            frame.step([&] { text = "kept"; });
            if (!frame.step([] { throw platform::makeFailure(platform::permissionDenied); }))
                return;
            text = "not reached";
        });
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(result, "kept");
    EXPECT_EQ(host.countInLog("Err.Number = 5 Err.Description = vector Line: "), 1);
    EXPECT_EQ(host.countInLog("Err.Number = 70 Err.Description = Permission denied Line: "), 1);
    EXPECT_EQ(host.countInLog("Exiting  [mdlTest]work_0"), 1);
}

TEST_F(Procedure, EachFailingStepIsLoggedWithTheLineItStandsOn) {
    const auto fails = [] { throw platform::makeFailure(platform::permissionDenied); };
    const unsigned line = std::source_location::current().line();
    procedure("mdlTest", "work", [&](Frame& frame) {
        frame.step(fails);
        if (!frame.step([&] { fails(); }))
            frame.step([] { throw std::runtime_error("Permission denied"); });
    });
    for (const unsigned below : {2U, 3U, 4U})
        EXPECT_EQ(host.countInLog("Permission denied Line: " + std::to_string(line + below)), 1) << below;
}

TEST_F(Procedure, OwnCasesAreNotLoggedButCount) {
    int cases = 0;
    procedure("mdlTest", "copy", [&](Frame& frame) {
        frame.on(70, [&](const platform::Failure&) { ++cases; });
        for (int i = 0; i < 11; ++i)
            frame.step([] { throw platform::Failure(70, "Permission denied"); });
    });
    EXPECT_EQ(cases, 10);
    EXPECT_EQ(host.countInLog(" Line: "), 0);
    EXPECT_EQ(host.countInLog("Error count exceeded, forcing exit from [mdlTest]copy"), 1);
}

TEST_F(Procedure, NoFailureCrossesAFrame) {
    bool completed = false;
    procedure("mdlTest", "outer", [&](Frame& frame) {
        for (int i = 0; i < 3; ++i)
            frame.step([] { EXPECT_EQ(failingSteps(11), 11); });
        // Not in a step: ends this body, no more.
        frame.step(
            [] { procedure("mdlTest", "loose", [](Frame&) { throw platform::Failure(9, "Loose"); }); });
        completed = true;
    });
    EXPECT_TRUE(completed);
    EXPECT_EQ(host.countInLog("forcing exit from [mdlTest]work"), 3);
    EXPECT_EQ(host.countInLog("forcing exit from [mdlTest]outer"), 0);
    EXPECT_EQ(host.countInLog("Err.Number = 9 Err.Description = Loose Line: 0"), 1);
    EXPECT_EQ(host.countInLog("Exiting  [mdlTest]loose_0"), 1);
    EXPECT_EQ(host.countInLog("Exiting  [mdlTest]outer_0"), 1);
}

TEST_F(Procedure, TheEndOfTheProcessPassesThrough) {
    const support::CatchProcessEnd ends;
    const auto leave = [] {
        procedure("mdlTest", "refuse", [](Frame& frame) { frame.step([] { platform::program::end(3); }); });
    };
    EXPECT_THROW(leave(), support::ProcessEnded);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Procedure, InTheDevelopmentHostAFailingStatementIsTriedAgain) {
    platform::program::setFile(host.programFolder() / "Consoleide.exe");
    int tries = 0;
    procedure("mdlTest", "work", [&](Frame& frame) {
        frame.step([&] {
            if (++tries < 4)
                throw platform::Failure(53, "File not found");
        });
    });
    EXPECT_EQ(tries, 4);
    EXPECT_EQ(host.countInLog(" Line: "), 3);
}

}  // namespace
