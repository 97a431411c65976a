#include "server/mdlCorvane.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

#include "core/RegistryAPI.h"
#include "core/procedure.h"

namespace mdlCorvane {

namespace {

constexpr char moduleName[] = "mdlCorvane";
constexpr char versionKey[] = "Software\\Tessaly\\";
constexpr std::size_t halfLength = 4;

std::string hexadecimal(std::uint32_t value) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08X", value);
    return digits;
}

// Reads the digits at the beginning in the given base; 0 when there is none. A number that needs the sign bit
// reads as negative.
short reading(std::string_view digits, int base) {
    std::uint16_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    return static_cast<short>(number);
}

std::string paddedNumber(short number) {
    const std::string digits = std::to_string(number < 0 ? -number : number);
    return (number < 0 ? "-" : "") + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

}  // namespace

core::CorvaneVersion getVersion() {
    return core::procedure(moduleName, "getVersion", core::CorvaneVersion{},
                           [](core::Frame& frame, core::CorvaneVersion& version) {
        std::uint32_t versionNumber = 0;
        std::uint32_t buildNumber = 0;
        const auto root = RegistryAPI::HKEY_LOCAL_MACHINE;
        frame.step(
            [&] { versionNumber = RegistryAPI::getRegistryDword(root, versionKey, "Version Number"); });
        frame.step([&] { buildNumber = RegistryAPI::getRegistryDword(root, versionKey, "Build Number"); });
        const std::string versionDigits = hexadecimal(versionNumber);
        const std::string buildDigits = hexadecimal(buildNumber);
        // Required: server releases write decimal digits into the nibbles, all but the revision, which really
        // is hexadecimal; one value is read in two ways.
        version.major = reading(versionDigits.substr(0, halfLength), 10);
        version.minor = reading(versionDigits.substr(halfLength), 10);
        version.build = reading(buildDigits.substr(0, halfLength), 10);
        version.revision = reading(buildDigits.substr(halfLength), 16);
        version.text = std::to_string(version.major) + "." + std::to_string(version.minor) + "(" +
                       std::to_string(version.build) + "." + std::to_string(version.revision) + ")";
    });
}

bool isVersionAtLeast(short major, short minor, short build, short revision) {
    return core::procedure(moduleName, "isVersionAtLeast", false, [&](core::Frame& frame, bool& result) {
        frame.step([&] {
            const core::CorvaneVersion required{major, minor, build, revision, {}};
            result = formatVersionKey(getVersion()) >= formatVersionKey(required);
        });
    });
}

std::string formatVersionKey(const core::CorvaneVersion& version) {
    return paddedNumber(version.major) + "." + paddedNumber(version.minor) + "." +
           paddedNumber(version.build) + "." + paddedNumber(version.revision);
}

}  // namespace mdlCorvane
