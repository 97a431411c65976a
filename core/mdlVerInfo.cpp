#include "core/mdlVerInfo.h"

#include "platform/libraries/versionRecord.h"
#include "platform/machine/host.h"

namespace mdlVerInfo {

std::string getFileVersionString(const std::string& filePath) {
    const auto record = platform::versionRecord(filePath);
    if (!record)
        return {};
    std::string text;
    for (const unsigned number : record->numbers)
        text.append(text.empty() ? "" : ".").append(std::to_string(number));
    return text;
}

std::string productName() {
    const auto record = platform::versionRecord(platform::program::file());
    return record && !record->productName.empty() ? record->productName : platform::program::name();
}

ProgramVersion programVersion() {
    const auto record = platform::versionRecord(platform::program::file());
    // The program calls its fourth number the revision; the third, the build, is always 0.
    return record ? ProgramVersion{record->numbers[0], record->numbers[1], record->numbers[3]}
                  : ProgramVersion{};
}

}  // namespace mdlVerInfo
