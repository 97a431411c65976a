#include "core/RegistryAPI.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/failure.h"
#include "platform/machine/host.h"
#include "support/temporaryHost.h"

namespace {

using namespace RegistryAPI;
using Bytes = std::vector<std::uint8_t>;
using Names = std::vector<std::string>;

class RegistryHelpers : public testing::Test {
  protected:
    support::TemporaryHost host;
    const RootKey root = RegistryAPI::HKEY_LOCAL_MACHINE;
};

TEST_F(RegistryHelpers, KeysAreCreatedOnceAndFoundInAnyCase) {
    EXPECT_FALSE(registryKeyExists(root, "Software\\A"));
    EXPECT_FALSE(createRegistryKey(root, "Software\\A"));
    EXPECT_TRUE(createRegistryKey(root, "SOFTWARE\\a"));
    EXPECT_TRUE(registryKeyExists(root, "software\\a\\"));
}

TEST_F(RegistryHelpers, ValuesComeBackByTypeAndElseTheDefault) {
    setRegistryValue(root, "Missing", "v", registryString, std::string("x"));
    EXPECT_FALSE(registryKeyExists(root, "Missing"));

    createRegistryKey(root, "K");
    setRegistryValue(root, "K", "text", registryString, std::string("value"));
    setRegistryValue(root, "K", "empty", registryString, std::string());
    setRegistryValue(root, "K", "fits", registryString, std::string(1023, 'x'));
    setRegistryValue(root, "K", "long", registryString, std::string(1024, 'x'));
    setRegistryValue(root, "K", "number", registryDword, 0xFFFFFFFFu);
    setRegistryValue(root, "K", "bytes", registryBinary, Bytes{0, 255});
    setRegistryValue(root, "K", "blob", registryBinary, Bytes(4097));

    EXPECT_EQ(getRegistryString(root, "K", "text", "d"), "value");
    EXPECT_EQ(platform::registry().value("HKEY_LOCAL_MACHINE\\K", "empty"), platform::RegistryValue(" "));
    EXPECT_EQ(getRegistryString(root, "K", "empty", "d"), "");
    EXPECT_EQ(getRegistryString(root, "K", "fits", "d").size(), 1023u);
    EXPECT_EQ(getRegistryString(root, "K", "long", "d"), "d");
    EXPECT_EQ(getRegistryString(root, "K", "missing", "d"), "d");
    EXPECT_EQ(getRegistryString(root, "Missing", "text", "d"), "d");
    EXPECT_EQ(getRegistryString(root, "K", "number", "d"), "d");
    EXPECT_EQ(getRegistryDword(root, "K", "number"), 0xFFFFFFFFu);
    EXPECT_EQ(getRegistryDword(root, "K", "text", 9), 9u);
    EXPECT_EQ(getRegistryValue(root, "K", "bytes", registryBinary, Bytes{}),
              platform::RegistryValue(Bytes{0, 255}));
    EXPECT_EQ(getRegistryValue(root, "K", "blob", registryBinary, Bytes{1}),
              platform::RegistryValue(Bytes{1}));
}

TEST_F(RegistryHelpers, SubkeysAreListedAndNoneIsOneEmptyName) {
    createRegistryKey(root, "K\\b");
    createRegistryKey(root, "K\\A\\deep");
    EXPECT_EQ(enumRegistryKeys(root, "K"), (Names{"A", "b"}));
    EXPECT_EQ(enumRegistryKeys(root, "K\\b"), Names{""});
    EXPECT_EQ(enumRegistryKeys(root, "Missing"), Names{});
    EXPECT_EQ(enumRegistryKeys(root, ""), Names{"K"});
}

TEST_F(RegistryHelpers, FailuresAreTheCallers) {
    const auto raised = [](auto&& action) -> std::string {
        try {
            action();
        } catch (const platform::Failure& failure) {
            return std::to_string(failure.number()) + " " + failure.description();
        }
        return {};
    };
    createRegistryKey(root, "K");
    EXPECT_EQ(raised([&] { getRegistryValue(root, "K", "v", 7, std::string()); }),
              "1001 Unsupported value type");
    EXPECT_EQ(getRegistryValue(root, "Missing", "v", 7, 3u), platform::RegistryValue(3u));

    std::ofstream(platform::host::registryFile()) << "damaged";
    EXPECT_EQ(raised([&] { createRegistryKey(root, "K2"); }), "1001 Unable to create the registry key");
    EXPECT_TRUE(raised([&] { registryKeyExists(root, "K"); }).starts_with("75 "));
    EXPECT_TRUE(raised([&] { getRegistryString(root, "K", "v"); }).starts_with("75 "));
}

}  // namespace
