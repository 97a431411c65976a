// A recipient as the administrator has him on the screen, for the operations that store him.
#pragma once

#include <string>
#include <vector>

namespace mdlDatabase {

// One entry of a list of addresses. A stored device's node has the key "DeviceKey:" and its key; one that was
// just added has an empty one.
struct AddressEntry {
    std::string nodeKey;
    std::string address;
};

struct RecipientRecord {
    std::string name;
    bool active = true;                // a new recipient is active in any case
    std::string voiceMailDirectoryId;  // empty for no device, as the next one
    std::string emailDirectoryId;
    std::vector<AddressEntry> pagerNumbers;  // in the order of the list, as the next one
    std::vector<AddressEntry> smtpAddresses;
    bool snmpTrapEnabled = false;
    bool syslogEnabled = false;
    std::string syslogHostAddress;
    bool failoverEnabled = false;
};

}  // namespace mdlDatabase
