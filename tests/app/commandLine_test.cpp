// What the console's program says of itself in a terminal, without a display and without a host.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

std::string saidTo(const std::string& arguments) {
    FILE* const pipe = popen(
        ("env -u DISPLAY QT_QPA_PLATFORM=nowhere " CONSOLE_PROGRAM " " + arguments + " 2>&1").c_str(), "r");
    std::string text;
    std::array<char, 1024> piece{};
    while (const std::size_t size = fread(piece.data(), 1, piece.size(), pipe))
        text.append(piece.data(), size);
    EXPECT_EQ(WEXITSTATUS(pclose(pipe)), 0) << text;
    return text;
}

TEST(CommandLine, SaysVersionAndUsageWithoutADisplay) {
    EXPECT_EQ(saidTo("--version"), "Quillon Service 1.3.0.13\n");
    EXPECT_EQ(saidTo("--help").substr(0, 15), "usage: QLNAdmin");
}

}  // namespace
