// Where the files of the present host's installation lie.
#pragma once

#include <filesystem>

namespace service {

std::filesystem::path databaseFile();  // the configuration
std::filesystem::path outboxFile();    // what the service keeps

}  // namespace service
