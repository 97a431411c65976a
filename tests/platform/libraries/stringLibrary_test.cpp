#include "platform/libraries/stringLibrary.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "peBuilder.h"
#include "platform/libraries/versionRecord.h"

namespace {

namespace fs = std::filesystem;
using peBuilder::Bytes;
using platform::StringLibrary;

constexpr std::uint32_t stringTable = 6;

// A block of sixteen strings of which the first ones are given.
Bytes block(std::initializer_list<std::u16string_view> texts) {
    Bytes bytes;
    for (const std::u16string_view text : texts) {
        bytes.put(text.size(), 2);
        bytes.put(text);
    }
    bytes.resize(bytes.size() + (16 - texts.size()) * 2);
    return bytes;
}

TEST(StringLibrary, FindsStringsOfEitherFileKind) {
    const peBuilder::Resources resources{
        {stringTable, {{1, block({u"zero", u"one"})}, {77, block({u"", u"Zürich €", u"\xD83D\xDE00!"})}}}};
    for (const std::uint16_t magic : {std::uint16_t{0x10B}, std::uint16_t{0x20B}}) {
        const auto library = StringLibrary::parse(peBuilder::peFile(resources, magic));
        ASSERT_TRUE(library) << magic;
        EXPECT_EQ(library->loadString(0), "zero");
        EXPECT_EQ(library->loadString(1), "one");
        EXPECT_EQ(library->loadString(2), "");
        EXPECT_EQ(library->loadString(1217), "Zürich €");
        EXPECT_EQ(library->loadString(1218), "\U0001F600!");
        EXPECT_EQ(library->loadString(70000), "");
    }
}

TEST(StringLibrary, CutsBetweenCharactersAndReplacesLoneSurrogates) {
    const std::u16string lone{u'a', char16_t{0xD83D}, u'b', char16_t{0xDE00}};
    const auto library = StringLibrary::parse(peBuilder::peFile(
        {{stringTable, {{1, block({std::u16string(1300, u'x'), u"a\xD83D\xDE00z", lone})}}}}));
    ASSERT_TRUE(library);
    EXPECT_EQ(library->loadString(0), std::string(1200, 'x'));
    EXPECT_EQ(library->loadString(0, 1300).size(), 1300u);
    EXPECT_EQ(library->loadString(1, 2), "a");
    EXPECT_EQ(library->loadString(1, 3), "a\U0001F600");
    EXPECT_EQ(library->loadString(1, 0), "");
    EXPECT_EQ(library->loadString(2), "a\uFFFDb\uFFFD");
}

TEST(StringLibrary, RefusesWhatIsNoLibraryAndLeavesOutBadBlocks) {
    EXPECT_FALSE(StringLibrary::parse({}));
    EXPECT_FALSE(StringLibrary::parse(peBuilder::peFile({{16, {{1, Bytes()}}}})));
    EXPECT_FALSE(StringLibrary::open("/nowhere/at/all.dll"));

    // The second block promises a longer string than it holds.
    Bytes bad = block({u"before"});
    bad[14] = 0xFF;
    const peBuilder::Resources resources{
        {stringTable, {{1, block({u"first"})}, {2, bad}, {3, block({u"third"})}}}};
    const auto library = StringLibrary::parse(peBuilder::peFile(resources));
    ASSERT_TRUE(library);
    EXPECT_EQ(library->loadString(0), "first");
    EXPECT_EQ(library->loadString(16), "");
    EXPECT_EQ(library->loadString(32), "third");

    // A tree whose type points behind the file's end, and one that points to itself.
    Bytes file = peBuilder::peFile(resources);
    file.patch(peBuilder::sectionOffset + 20, 0x80FFFFF0u);
    EXPECT_FALSE(StringLibrary::parse(file));
    file.patch(peBuilder::sectionOffset + 20, 0x80000000u);
    EXPECT_FALSE(StringLibrary::parse(file));
}

TEST(StringLibrary, SurvivesAnyDamage) {
    const Bytes whole =
        peBuilder::peFile({{stringTable, {{1, block({u"alpha", u"beta"})}, {5, block({u"gamma"})}}}});
    std::size_t opened = 0;
    peBuilder::forDamaged(whole, [&](const std::vector<std::uint8_t>& bytes) {
        const auto library = StringLibrary::parse(bytes);
        if (!library)
            return;
        ++opened;
        for (std::uint32_t id = 0; id < 96; ++id)
            ASSERT_LE(library->loadString(id, 100000).size(), whole.size() * 3);
        if (bytes.size() < whole.size()) {
            ASSERT_TRUE(library->loadString(0).empty() || library->loadString(0) == "alpha");
        }
    });
    EXPECT_GT(opened, 500u);
}

TEST(StringLibrary, ReadsWhatTheResourceCompilerMakes) {
    std::string pattern = (fs::temp_directory_path() / "qln-library-XXXXXX").string();
    const fs::path folder = mkdtemp(pattern.data());
    std::ofstream(folder / "x.rc") << "#pragma code_page(65001)\n"
                                      "LANGUAGE 7, 1\n"
                                      "STRINGTABLE BEGIN\n 7 \"sieben\"\n 1224 \"Dienst\"\nEND\n"
                                      "1 VERSIONINFO\nFILEVERSION 1,3,0,13\nPRODUCTVERSION 9,9,9,9\nBEGIN\n"
                                      " BLOCK \"StringFileInfo\" BEGIN BLOCK \"040704b0\" BEGIN\n"
                                      "  VALUE \"Comments\", \"none\"\n  VALUE \"ProductName\", \"Quillon\"\n"
                                      " END END\n"
                                      " BLOCK \"VarFileInfo\" BEGIN VALUE \"Translation\", 0x407, 1200 END\n"
                                      "END\n";
    const std::string command = "cd '" + folder.string() +
                                "' && x86_64-w64-mingw32-windres --preprocessor=cat x.rc -O coff x.o"
                                " && x86_64-w64-mingw32-ld --dll -e 0 x.o -o x.dll";
    const bool built = std::system(
                           "command -v x86_64-w64-mingw32-windres >/dev/null"
                           " && command -v x86_64-w64-mingw32-ld >/dev/null") == 0;
    const bool made = built && std::system(command.c_str()) == 0;
    const auto library = StringLibrary::open(folder / "x.dll");
    const auto version = platform::versionRecord(folder / "x.dll");
    fs::remove_all(folder);
    if (!built)
        GTEST_SKIP() << "the resource compiler or its linker is not installed";
    ASSERT_TRUE(made && library && version);
    EXPECT_EQ(library->loadString(7), "sieben");
    EXPECT_EQ(library->loadString(1224), "Dienst");
    EXPECT_EQ(version->numbers, (std::array<std::uint16_t, 4>{1, 3, 0, 13}));
    EXPECT_EQ(version->productName, "Quillon");
}

}  // namespace
