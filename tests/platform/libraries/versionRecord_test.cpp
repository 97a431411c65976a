#include "platform/libraries/versionRecord.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "peBuilder.h"

namespace {

namespace fs = std::filesystem;
using Numbers = std::array<std::uint16_t, 4>;
using peBuilder::Bytes;
using platform::parseVersionRecord;

void putNote(Bytes& file, std::string_view owner, std::uint32_t type, std::string_view text) {
    file.put(owner.size() + 1, 4);
    file.put(text.size() + 1, 4);
    file.put(type, 4);
    for (const std::string_view part : {owner, text}) {
        file.insert(file.end(), part.begin(), part.end());
        file.push_back(0);
        file.pad(4);
    }
}

// A 64-bit ELF file whose one segment, or one section, holds a foreign note and then the package note.
Bytes elf(std::string_view json, bool asSection = false) {
    Bytes notes;
    putNote(notes, "GNU", 3, "some build");
    putNote(notes, "FDO", 0xCAFE1A7E, json);
    Bytes file;
    file.put(0x464C457F, 4);
    file.put(0x010102, 3);
    file.resize(64);
    file.patch(asSection ? 40 : 32, 64);
    file.patch(asSection ? 58 : 54, asSection ? 0x10040 : 0x10038);
    file.put(asSection ? 0 : 4, 4);
    file.put(asSection ? 7 : 4, 4);
    file.resize(64 + (asSection ? 24 : 8));
    file.put(128, 8);
    file.resize(64 + 32);
    file.put(notes.size(), 8);
    file.resize(64 + 48);
    file.put(4, 8);
    file.resize(128);
    file.append(notes);
    return file;
}

Bytes versionBlock(std::u16string_view key, const Bytes& value, const std::vector<Bytes>& below = {}) {
    Bytes block;
    block.put(0, 2);
    block.put(value.size(), 2);
    block.put(0, 2);
    block.put(key);
    block.put(0, 2);
    block.pad(4);
    block.append(value);
    for (const Bytes& inner : below) {
        block.pad(4);
        block.append(inner);
    }
    block[0] = static_cast<std::uint8_t>(block.size());
    block[1] = static_cast<std::uint8_t>(block.size() >> 8);
    return block;
}

Bytes versionLibrary(std::uint32_t signature, std::u16string_view product) {
    Bytes fixed;
    for (const std::uint32_t word : {signature, 0x10000u, 0x00010003u, 0x0000000Du, 0x00090009u})
        fixed.put(word, 4);
    fixed.resize(52);
    Bytes name, other;
    name.put(product);
    name.put(0, 2);
    other.put(u"other");
    other.put(0, 2);
    const Bytes table =
        versionBlock(u"040904b0", {}, {versionBlock(u"Comments", other), versionBlock(u"ProductName", name)});
    return peBuilder::peFile({{16,
                               {{1, versionBlock(u"VS_VERSION_INFO", fixed,
                                                 {versionBlock(u"VarFileInfo", {}),
                                                  versionBlock(u"StringFileInfo", {}, {table})})}}}});
}

TEST(VersionRecord, ReadsPackageNotes) {
    for (const bool asSection : {false, true}) {
        const auto record = parseVersionRecord(elf(
            R"({"type":"qln", "name":"Qu\u00eflon \ud83d\ude00 \"S\"","version":"1.3.0.13"})", asSection));
        ASSERT_TRUE(record) << asSection;
        EXPECT_EQ(record->numbers, (Numbers{1, 3, 0, 13}));
        EXPECT_EQ(record->productName, "Qu\u00eflon \U0001F600 \"S\"");
    }
    const auto shortOne = parseVersionRecord(elf(R"({"version":"65535.2"})"));
    ASSERT_TRUE(shortOne);
    EXPECT_EQ(shortOne->numbers, (Numbers{65535, 2, 0, 0}));
    EXPECT_EQ(shortOne->productName, "");
}

TEST(VersionRecord, RefusesMalformedNotes) {
    for (const char* json : {"",
                             "{",
                             "{}",
                             "[]",
                             R"({"name":"x"})",
                             R"({"version":1})",
                             R"({"version":"1"} x)",
                             R"({"version":"1",})",
                             R"({"version":"1" "name":"x"})",
                             R"({"version":"1","version":"2"})",
                             R"({"version":"1","name":{"a":"b"}})",
                             R"({"version":"1","name":"\x"})",
                             R"({"version":"1","name":"\ud800"})",
                             R"({"version":"1","name":"\u12"})",
                             "{\"version\":\"1\",\"name\":\"a\nb\"}",
                             R"({"version":""})",
                             R"({"version":"1."})",
                             R"({"version":".1"})",
                             R"({"version":"1.2.3.4.5"})",
                             R"({"version":"65536"})",
                             R"({"version":"-1"})",
                             R"({"version":"1.2b"})",
                             R"({"version":" 1"})",
                             "{\"version\":\"1\",\"name\":\"\xFF\"}"})
        EXPECT_FALSE(parseVersionRecord(elf(json))) << json;
    Bytes other = elf(R"({"version":"1"})");
    other[4] = 1;  // a 32-bit file
    EXPECT_FALSE(parseVersionRecord(other));
}

TEST(VersionRecord, ReadsVersionResources) {
    const auto record = parseVersionRecord(versionLibrary(0xFEEF04BD, u"Quillon Größe"));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->numbers, (Numbers{1, 3, 0, 13}));
    EXPECT_EQ(record->productName, "Quillon Größe");
    EXPECT_FALSE(parseVersionRecord(versionLibrary(0xFEEF04BE, u"Quillon")));
    EXPECT_FALSE(parseVersionRecord(peBuilder::peFile({{16, {{1, Bytes()}}}})));
}

TEST(VersionRecord, SurvivesAnyDamage) {
    for (const Bytes& whole :
         {elf(R"({"name":"Q","version":"1.3.0.13"})"), elf(R"({"name":"Q","version":"1.3.0.13"})", true),
          versionLibrary(0xFEEF04BD, u"Quillon")}) {
        ASSERT_TRUE(parseVersionRecord(whole));
        peBuilder::forDamaged(whole, [&](const std::vector<std::uint8_t>& bytes) {
            const auto record = parseVersionRecord(bytes);
            ASSERT_LE(record ? record->productName.size() : 0, whole.size() * 3);
        });
    }
}

TEST(VersionRecord, ReadsWhatTheLinkerWritesUnderAnyFileName) {
    if (std::system("command -v cc >/dev/null") != 0)
        GTEST_SKIP() << "no compiler is installed";
    std::string pattern = (fs::temp_directory_path() / "qln-version-XXXXXX").string();
    const fs::path folder = mkdtemp(pattern.data());
    const std::string command =
        "cd '" + folder.string() +
        R"(' && echo 'int x;' | cc -shared -nostdlib -x c - -o service -Xlinker )"
        R"('--package-metadata={"type":"qln","name":"Quillon Service","version":"1.3.0.13"}')";
    EXPECT_EQ(std::system(command.c_str()), 0);
    fs::copy_file(folder / "service", folder / "service.ex_");
    for (const char* name : {"service", "service.ex_"}) {
        const auto record = platform::versionRecord(folder / name);
        EXPECT_TRUE(record && record->numbers == Numbers({1, 3, 0, 13})) << name;
        EXPECT_TRUE(record && record->productName == "Quillon Service") << name;
    }
    // Of a large program only the parts are read that lead to its note.
    constexpr std::uintmax_t largest = 512ull << 20;
    fs::resize_file(folder / "service", largest);
    EXPECT_TRUE(platform::versionRecord(folder / "service"));
    fs::resize_file(folder / "service", largest + 1);
    EXPECT_FALSE(platform::versionRecord(folder / "service"));
    fs::resize_file(folder / "service.ex_", 70);
    EXPECT_FALSE(platform::versionRecord(folder / "service.ex_"));
    fs::resize_file(folder / "service.ex_", 0);
    EXPECT_FALSE(platform::versionRecord(folder / "service.ex_"));
    EXPECT_FALSE(platform::versionRecord(folder));
    EXPECT_FALSE(platform::versionRecord(folder / "missing"));
    fs::remove_all(folder);
}

}  // namespace
