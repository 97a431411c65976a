// Notification devices of recipients: a row in Device, its link in DeviceRecipient, and the events it is on.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "database/deviceType.h"
#include "database/rows.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

// No device's key, and the type of a device that is not there.
inline constexpr long noDevice = -1;

struct NewDevice {
    DeviceType type = voiceMail;
    std::string address;
    long recipientKey = 0;
};

// Adds an active device to `devices`, rows of Device, and links it to its recipient: statements
// of the caller's procedure. `logLine` is written right before the row, unless it is empty. The device's key;
// 0 when it could not be written or linked: it is not there then.
long createDevice(core::Frame& frame, Rows& devices, const NewDevice& device, std::string_view logLine = {});
// False when the link was not written.
bool linkDeviceRecipient(long deviceKey, long recipientKey);
// Puts a device that its recipient just gained on every event that his other devices are on, silent: nobody
// is notified on it until the administrator ticks it.
void addToExistingEvents(long recipientKey, long deviceKey);
// True when the device is gone, with its assignments. Its rows in AddressDetails stay until the next rebuild.
bool deleteDevice(long deviceKey);

// The devices of a recipient with their names in the directory, by type; without those that have none. A
// statement of the caller's procedure, who reads and closes it: raises the engine's failures.
platform::Recordset openDevicesForRecipient(long recipientKey);
// Number of devices of a type, or of all types (0); of one recipient when a key is given. 0 on failure.
long countDevices(long deviceType, std::optional<long> recipientKey = std::nullopt);
// Numbers of devices by recipient's key: by type, and of all types together at allDeviceTypes. A recipient
// without devices is missing. Nothing on failure. One statement for all recipients: their list shows seven
// numbers in each of its rows.
using DeviceCounts = std::unordered_map<long, std::array<long, failover + 1>>;
std::optional<DeviceCounts> countDevicesByRecipient();
struct RecipientDevice {
    long key = 0;
    long type = 0;
    bool active = false;
    std::string address;
    std::string displayName;
};
// The devices of all recipients by their keys, each recipient's as openDevicesForRecipient orders them, in
// one statement. Raises the engine's failures.
std::map<long, std::vector<RecipientDevice>> devicesOfAllRecipients();
// False, with a failure in the log, when there is no such device.
bool isDeviceActive(long deviceKey);
// noDevice when there is no such device, and on failure.
long getDeviceType(long deviceKey);
// The same; nothing when the type could not be read, or when the device has none.
std::optional<long> readDeviceType(long deviceKey);
// The type's name in the present language; empty for a number that is no type.
std::string getDeviceLabel(long deviceType);

}  // namespace mdlDatabase
