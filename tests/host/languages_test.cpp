// The language libraries as they are delivered: complete, and of the English texts' shape.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>

#include "core/modLocalize.h"
#include "platform/libraries/stringLibrary.h"
#include "platform/libraries/versionRecord.h"
#include "platform/machine/characters.h"

namespace {

constexpr long firstId = 1001;
constexpr long lastId = 1316;

class Languages : public ::testing::TestWithParam<const char*> {
  protected:
    Languages()
        : file(std::filesystem::path(LIBRARY_FOLDER) /
               ("QLNbrandingres_" + std::string(GetParam()) + ".dll")),
          library(platform::StringLibrary::open(file)) {}

    std::string text(long id) { return library->loadString(static_cast<std::uint32_t>(id)); }

    std::filesystem::path file;
    std::optional<platform::StringLibrary> library;
};

struct Shape {
    std::size_t leadingBlanks, trailingBlanks;
    long ampersands;
    bool colon;  // the last character before the blanks

    bool operator==(const Shape&) const = default;
};

Shape shapeOf(const std::string& text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    const std::size_t last = text.find_last_not_of(' ');
    const bool blank = last == std::string::npos;
    return {first, blank ? 0 : text.size() - 1 - last, std::ranges::count(text, '&'),
            !blank && text[last] == ':'};
}

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.leadingBlanks << "/" << shape.trailingBlanks << " blanks, " << shape.ampersands
         << " '&', colon " << shape.colon;
}

// The letter behind a mnemonic's mark, or 0; a mark before a blank is an "and".
char mnemonic(const std::string& text) {
    const std::size_t mark = text.find('&');
    return mark == std::string::npos || mark + 1 >= text.size() || text[mark + 1] == ' '
               ? '\0'
               : static_cast<char>(std::tolower(static_cast<unsigned char>(text[mark + 1])));
}

TEST_P(Languages, AreCompleteAndOfTheEnglishTextsShape) {
    ASSERT_TRUE(library.has_value()) << file;
    EXPECT_TRUE(platform::versionRecord(file).has_value());
    for (long id = firstId; id <= lastId; ++id) {
        const std::string english = modLocalize::englishString(id);
        EXPECT_FALSE(text(id).empty()) << id;
        // The labels of the default mail text are padded to one length, so that its values line up.
        const bool padded = id >= 1211 && id <= 1220;
        Shape shape = shapeOf(text(id));
        // In English what these are joined with follows without a blank.
        const bool joined = id == 1188 || id == 1303;
        if (joined) {
            EXPECT_EQ(shape.trailingBlanks, 1U) << id;
        }
        if (padded || joined)
            shape.trailingBlanks = shapeOf(english).trailingBlanks;
        EXPECT_EQ(shape, shapeOf(english)) << id << " " << text(id);
        if (padded) {
            EXPECT_EQ(platform::countCharacters(text(id)), platform::countCharacters(english)) << id;
        }
    }
    // Names of the directory's columns and of products are no words of a language.
    for (const long id : {1007L, 1091L, 1092L})
        EXPECT_EQ(text(id), modLocalize::englishString(id));
    EXPECT_NE(text(1045).find("(*.wav)|*.wav"), std::string::npos);
}

TEST_P(Languages, HaveMnemonicsThatAreUniqueInEachWindowAndMenu) {
    ASSERT_TRUE(library.has_value());
    const std::initializer_list<long> together[] = {
        {1010, 1013},                                // menu bar
        {1114, 1117, 1118, 1173, 1172, 1257, 1016},  // File
        {1115, 1116, 1310},                          // New
        {1014, 1015},                                // Help
        {1010, 1013, 1171, 1170},                    // main window with each of its panes
        {1010, 1013, 1168, 1169},
        {1010, 1013, 1312, 1313},
        {1010, 1013, 1307, 1308, 1309},
        {1010, 1013, 1111},
        {1055, 1057},  // event dialog
        {1063, 1064},  // exclusion dialogs
        {1307, 1308, 1309},
        {1258},
    };
    for (const auto& group : together) {
        std::set<char> taken;
        for (const long id : group) {
            const char letter = mnemonic(text(id));
            EXPECT_TRUE(letter == '\0' || taken.insert(letter).second) << id << " " << text(id);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Delivered, Languages, ::testing::Values("DEU", "FRA"));

}  // namespace
