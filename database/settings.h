// Keys of new rows, the settings in Configuration, and the default content of new events.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "database/contentType.h"

namespace mdlDatabase {

// The highest `keyField` in `tableName`; asked right after an insert. 0 on failure.
long getLastKey(std::string_view tableName, std::string_view keyField);

// A setting's text; empty when there is no row.
std::string getConfigurationSetting(std::string_view settingName);
// The same; nothing when the database could not be read.
std::optional<std::string> readConfigurationSetting(std::string_view settingName);
void setConfigurationSetting(std::string_view settingName, std::string_view value);

// Default content of a new event: the voice file, or subject and body of the mail. A content type has its own
// of these, and the others are empty; another number has none.
struct DefaultContent {
    std::string voiceFile;
    std::string subject;
    std::string body;
    bool operator==(const DefaultContent&) const = default;
};
DefaultContent getDefaultContent(long contentType);

// Converts between a priority's stored value (2 Urgent, 1 Normal, 0 Low) and its place in a list; its own
// inverse. Anything but 0 and 1 gives 0.
long mapPriority(long value);

// Stores the defaults of the five content settings that are empty.
void makeInitialDatabaseChanges();

}  // namespace mdlDatabase
