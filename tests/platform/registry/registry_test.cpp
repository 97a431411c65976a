#include "platform/registry/registry.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "platform/files/files.h"
#include "support/adoFixture.h"

namespace {

namespace files = platform::files;
namespace fs = std::filesystem;
using adoTest::failureOf;
using platform::Registry;
using platform::RegistryValue;
using Bytes = std::vector<std::uint8_t>;
using Names = std::vector<std::string>;

class RegistryStore : public testing::Test {
  protected:
    void write(const std::string& text) { std::ofstream(file, std::ios::binary) << text; }

    adoTest::Folder folder;
    fs::path file = folder.file("registry.reg");
    Registry store{file};
};

TEST_F(RegistryStore, EverythingComesBackFromTheFile) {
    const std::string key = "HKEY_LOCAL_MACHINE\\A [b] \"c\"\\;d ü";
    const std::map<std::string, RegistryValue> values{{"", "default"},
                                                      {"empty", ""},
                                                      {"hard \\ \" = ;", "\\\\server\\\"share\"\\"},
                                                      {"lines\r\n", "one\r\ntwo\n\\n\ttab "},
                                                      {"script", "שלום 🚨 e\u0301"},
                                                      {"number", 0u},
                                                      {"large", 0xFFFFFFFFu},
                                                      {"bytes", Bytes{0, 0x0F, 0xFF}},
                                                      {"none", Bytes{}},
                                                      {"many", Bytes(5000, 0xA5)}};
    EXPECT_FALSE(store.createKey(key));
    for (const auto& [name, value] : values)
        EXPECT_TRUE(store.setValue(key, name, value));
    Registry other(file);
    ASSERT_TRUE(other.key(key));
    EXPECT_EQ(other.key(key)->path, key);
    EXPECT_EQ(other.key(key)->values.size(), values.size());
    for (const auto& [name, value] : values)
        EXPECT_EQ(other.value(key, name), value) << name;
    const std::string text = files::readFile(file);
    EXPECT_EQ(platform::formatRegistry(platform::parseRegistry(text, "")), text);
}

TEST_F(RegistryStore, NamesIgnoreCaseAndKeepTheirSpelling) {
    EXPECT_FALSE(store.createKey("Root\\Soft\\App"));
    EXPECT_TRUE(store.createKey("\\ROOT\\\\soft\\APP\\"));
    EXPECT_FALSE(store.createKey("Root\\Soft\\App2"));
    EXPECT_FALSE(store.createKey("Root\\Software"));
    EXPECT_FALSE(store.createKey("root\\SOFT\\app\\Deep\\er"));
    EXPECT_EQ(store.subkeys("ROOT"), (Names{"Soft", "Software"}));
    EXPECT_EQ(store.subkeys("root\\soft\\"), (Names{"App", "App2"}));
    EXPECT_EQ(store.subkeys("Nowhere"), Names{});

    store.setValue("root\\soft\\app", "DataPath", "old");
    store.setValue("ROOT\\SOFT\\APP", "DATAPATH", "new");
    EXPECT_EQ(store.value("Root\\Soft\\App", "datapath"), RegistryValue("new"));
    const std::string text = files::readFile(file);
    EXPECT_NE(text.find("[Root\\Soft\\App]\n\"DataPath\"=\"new\"\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("old"), std::string::npos);

    EXPECT_FALSE(store.setValue("Root\\Missing", "v", "x"));
    EXPECT_FALSE(store.keyExists("Root\\Missing"));
    EXPECT_FALSE(store.deleteValue("Root\\Soft\\App", "other"));
    EXPECT_TRUE(store.deleteValue("Root\\Soft\\App", "DATApath"));
    EXPECT_EQ(store.value("Root\\Soft\\App", "DataPath"), std::nullopt);
    EXPECT_FALSE(store.deleteKey("Root\\So"));
    EXPECT_TRUE(store.deleteKey("root\\SOFT\\app"));
    EXPECT_EQ(store.subkeys("Root\\Soft"), Names{"App2"});
    EXPECT_FALSE(store.keyExists("Root\\Soft\\App\\Deep"));
}

TEST_F(RegistryStore, TextWrittenByHandIsRead) {
    write(
        "\xEF\xBB\xBFRegistry Editor Version 5.00\r\n; a comment\r\n\r\n"
        "[HKEY_LOCAL_MACHINE\\K]\r\n@ = \"default\"\r\n  \"n\"=dword:00030001  \r\n\"N\"=dword:ABCDEF01\r\n"
        "\"h\"=hex:01,fF,\\\r\n  0,\\\r\n 20\r\n[hkey_local_machine\\k]\r\n\"more\"=\"a\\\\b\"");
    const std::string key = "HKEY_LOCAL_MACHINE\\K";
    EXPECT_EQ(store.value(key, ""), RegistryValue("default"));
    EXPECT_EQ(store.value(key, "n"), RegistryValue(0xABCDEF01u)) << "the last of two wins";
    EXPECT_EQ(store.value(key, "h"), RegistryValue(Bytes{1, 255, 0, 32}));
    EXPECT_EQ(store.value(key, "more"), RegistryValue("a\\b"));
}

TEST_F(RegistryStore, DamagedTextIsRefusedByLineAndNeverOverwritten) {
    // By the line of the damage; what is behind the second line stands in a key.
    const std::pair<int, std::vector<const char*>> damages[] = {
        {2, {"[K", "[]", "[-K]", "words", "\"v\"=\"x\""}},
        {3,
         {"\"v\"=\"x", "\"v\"=\"x\" y", "\"v=\"x\"", "\"v\"", "\"v\"=", "\"v\"=-", "\"v\"=\"a\\b\"",
          "\"v\"=\"a\\", "\"v\"=dword:1", "\"v\"=dword:0000000g", "\"v\"=dword:000000001", "\"v\"=hex(2):00",
          "\"v\"=hex:001", "\"v\"=hex:1 2", "\"v\"=hex:01,\\", "\"v\"=\"\xFF\""}},
        {5, {"\"v\"=hex:01,\\\n02,\\\nzz", "\n\n; \xC3"}}};
    for (const auto& [line, texts] : damages)
        for (const char* damage : texts) {
            const std::string text = "; first line\n" + std::string(line > 2 ? "[K]\n" : "") + damage;
            write(text);
            std::string description;
            EXPECT_EQ(failureOf([&] { store.createKey("New"); }, &description), 75) << damage;
            EXPECT_NE(description.find(file.string() + ":" + std::to_string(line) + ": "), std::string::npos)
                << damage << ": " << description;
            EXPECT_EQ(failureOf([&] { store.setValue("K", "v", "x"); }), 75);
            EXPECT_EQ(failureOf([&] { store.keyExists("K"); }), 75);
            EXPECT_EQ(files::readFile(file), text);
        }
    write("[K]\n");
    EXPECT_TRUE(store.keyExists("K"));
}

TEST_F(RegistryStore, NothingIsWrittenThatCouldNotBeReadBack) {
    store.createKey("K");
    const std::string before = files::readFile(file);
    for (const char* key : {"", "\\", "a\nb", "a\r", "-K", "\xC3"})
        EXPECT_EQ(failureOf([&] { store.createKey(key); }), 5) << key;
    EXPECT_EQ(failureOf([&] { store.setValue("K", "v", "cut \xF0\x9F"); }), 5);
    EXPECT_EQ(failureOf([&] { store.setValue("K", "\xFF", 1u); }), 5);
    EXPECT_EQ(files::readFile(file), before);
    EXPECT_TRUE(Registry(file).keyExists("K"));
}

TEST_F(RegistryStore, ChangesByOthersAreSeen) {
    store.createKey("K");
    store.setValue("K", "v", "one");
    Registry other(file);
    other.setValue("K", "v", "two");
    EXPECT_EQ(store.value("K", "v"), RegistryValue("two"));
    // By an editor, in the same file, of the same length and with the old time.
    const std::string text = files::readFile(file);
    const auto time = fs::last_write_time(file);
    write(std::string(text).replace(text.find("two"), 3, "six"));
    fs::last_write_time(file, time);
    EXPECT_EQ(store.value("K", "v"), RegistryValue("six"));
    other.setValue("K", "w", 1u);
    EXPECT_EQ(store.value("K", "v"), RegistryValue("six"));
    fs::remove(file);
    EXPECT_FALSE(store.keyExists("K"));
    EXPECT_FALSE(store.createKey("K"));
    EXPECT_EQ(Registry(file).value("K", "v"), std::nullopt);
}

TEST_F(RegistryStore, WritersAtTheSameTimeLoseNothing) {
    constexpr int first = 100;
    constexpr int end = 300;
    const std::string writers[] = {"a", "b"};
    std::string text = "[K]\n";
    for (const std::string& writer : writers)
        for (int i = first; i < end; ++i)
            text += "\"" + writer + std::to_string(i) + "\"=dword:00000000\n";
    write(text);
    store.createKey("L");
    // Every set keeps the file's length, so that only its identity and time tell one state from the next.
    for (const std::string& writer : writers) {
        if (::fork() != 0)
            continue;
        const long failed = failureOf([&] {
            for (int i = first; i < end; ++i)
                store.setValue("K", writer + std::to_string(i), 7u);
        });
        ::_exit(static_cast<int>(failed));
    }
    int status = 0;
    while (::wait(&status) > 0)
        EXPECT_EQ(status, 0);
    int lost = 0;
    const auto key = store.key("K");
    ASSERT_TRUE(key.has_value());
    for (const auto& [name, value] : key->values)
        lost += value == RegistryValue(7u) ? 0 : 1;
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(key->values.size(), 2u * (end - first));
}

TEST_F(RegistryStore, FilesAreTheirOwnersAlone) {
    store.createKey("K");
    for (const files::Entry& entry : files::listFiles(folder.path())) {
        struct stat status {};
        ASSERT_EQ(::stat((folder.path() / entry.name).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600u) << entry.name;
    }
    EXPECT_LE(files::listFiles(folder.path()).size(), 2u) << "the store, and the lock beside it";
    files::setReadOnly(file, true);
    EXPECT_EQ(failureOf([&] { store.createKey("L"); }), 70);
    EXPECT_FALSE(store.keyExists("L"));
}

}  // namespace
