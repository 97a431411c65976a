// Version records as text.
#pragma once

#include <string>

namespace mdlVerInfo {

// "1.3.0.13", or empty when the file is missing or has no version record.
std::string getFileVersionString(const std::string& filePath);

// The program's own name and version, from its version record ("Quillon Service", 1.3.0.13).
std::string productName();
struct ProgramVersion {
    int major, minor, revision;
};
ProgramVersion programVersion();

}  // namespace mdlVerInfo
