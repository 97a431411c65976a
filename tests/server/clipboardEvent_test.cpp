#include "server/clipboardEvent.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/temporaryHost.h"

namespace {

std::string joined(const std::vector<std::string>& lines, const std::string& end = "\r\n") {
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i)
        text += (i > 0 ? end : "") + lines[i];
    return text;
}

const std::vector<std::string> english{"Event Type:\tError",    "Event Source:\tMeridaneCorvane_MessageStore",
                                       "Event Category:\tNone", "Event ID:\t4711",
                                       "Date:\t\t11/24/2026",   "Time:\t\t2:05:09 PM",
                                       "User:\t\tN/A",          "Computer:\tCORVANE01",
                                       "Description:",          "The store: gone."};

class ClipboardEvent : public testing::Test {
  protected:
    bool parse(const std::string& text) {
        source = "-";
        id = "-";
        type = -1;
        return mdlUtility::checkEventFromClipboardText(text, source, id, type);
    }
    // The text with one of its lines replaced.
    bool parseWith(std::size_t line, const std::string& text) {
        std::vector<std::string> lines = english;
        lines[line] = text;
        return parse(joined(lines));
    }

    support::TemporaryHost host;
    std::string source, id;
    std::int16_t type = -1;
};

TEST_F(ClipboardEvent, ReadsSourceIdAndTypeInEveryLanguage) {
    EXPECT_TRUE(parse(joined(english)));
    EXPECT_EQ(source, "MeridaneCorvane_MessageStore");
    EXPECT_EQ(id, "4711");
    EXPECT_EQ(type, 0);
    const std::pair<const char*, int> words[] = {
        {"Type de l'événement :\tErreur", 0},
        {"Ereignistyp:\tFehler", 0},
        {"Event Type:\tWARNING", 1},
        {"Type de l'événement :\tAvertissement", 1},
        {"Ereignistyp:\t\tWarnung", 1},
        {"Event Type:\tInformation", 2},
        {"Type de l'événement :\tInformations", 2},
        {"Ereignistyp:\tInformationen", 2},
        {"Event Type:\tSuccess Audit", 0},
        {":Warning", 1},
        {"Event Type:\tWarning ", 0},
        {"Event Type: Warning", 0},
    };
    for (const auto& [line, expected] : words) {
        EXPECT_TRUE(parseWith(0, line)) << line;
        EXPECT_EQ(type, expected) << line;
    }
    EXPECT_TRUE(parseWith(1, "Source :\t\tTwo words \t"));
    EXPECT_EQ(source, "Two words ") << "tabs go, blanks stay";
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(ClipboardEvent, RefusesWhatIsNoCopiedEventAndKeepsWhatItHadReadByThen) {
    std::vector<std::string> nine = english;
    nine.pop_back();
    for (const std::string& text : {std::string(), std::string("\0\r\n", 3), joined(nine),
                                    joined(english, "\n"), joined(english, "\r"), joined(english, "\n\r")}) {
        EXPECT_FALSE(parse(text));
        EXPECT_EQ(source + id + std::to_string(type), "---1");
    }
    EXPECT_FALSE(parseWith(0, "Event Type\tError"));
    EXPECT_FALSE(parseWith(0, "Event Type:\tError:"));
    EXPECT_EQ(type, -1);
    EXPECT_FALSE(parseWith(1, "Event Source:\tmy:source"));
    EXPECT_EQ(type, 0);
    EXPECT_EQ(source, "-");
    EXPECT_FALSE(parseWith(3, ""));
    EXPECT_EQ(source, "MeridaneCorvane_MessageStore");
    EXPECT_EQ(id, "-");
    // A NUL is a character like others: it passes here and matches no source.
    EXPECT_TRUE(parseWith(1, std::string("S:\tDisk\0", 8)));
    EXPECT_EQ(source.size(), 5U);
}

TEST_F(ClipboardEvent, TakesATextOfAMillionCharactersInOneLook) {
    constexpr std::size_t million = 1'000'000;
    std::vector<std::string> lines = english;
    lines[1] = "Source:\t" + std::string(million, 'x');
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(parse(std::string(million, '\r')));
    EXPECT_FALSE(parse(std::string(million, ':')));
    EXPECT_TRUE(parse(joined(lines)));
    std::string ends;
    while (ends.size() < million)
        ends += "\r\n";
    EXPECT_FALSE(parse(ends));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
