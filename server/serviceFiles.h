// The service's files on this server, and their copies in the kit.
#pragma once

#include <filesystem>

namespace mdlUtility {

// Where the service's files lie: "Service" below the installation root.
std::filesystem::path serviceFolder();
inline constexpr char serviceProgram[] = "HbQlnSvc.exe";
inline constexpr char deliveredProgram[] = "HbQlnSvc.ex_";

// Copies the kit's forms of the service's files over the running forms. A target that is held or protected is
// told and tried again.
void copyQLNService();

}  // namespace mdlUtility
