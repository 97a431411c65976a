// What the configuration database says about whom to notify of what, at one moment, as plain values.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/ado/ado.h"
#include "service/transports/deviceKind.h"

namespace service {

using Moment = std::chrono::system_clock::time_point;

// A moment in stored form, "2026-11-24 14:05:09", local time; nothing for another text.
std::optional<Moment> momentOfStored(const std::string& stored);

// Of an event, by the kind of content.
struct Content {
    std::string voiceFile;  // its name
    std::string subject;
    std::string body;
    long priority = 1;  // 0 low, 1 normal, 2 urgent
};

struct Device {
    long key = 0;
    DeviceKind kind{};
    std::string address;
    bool isActive = false;  // false for one that is cut off
    std::string recipient;
    bool isRecipientActive = false;
};

struct Assignment {
    std::size_t device = 0;  // index into Monitoring::devices
    bool isOn = false;
};

struct MonitoredEvent {
    long key = 0;
    std::string source;
    long id = -1;  // -1 for all ids of the source
    std::string title;
    long severity = 0;  // 1, 2 or 4: errors; warnings too; informational events too
    bool isActive = false;
    bool isCollection = false;  // stands for all sources of a product, but for those that are excluded
    bool isTest = false;        // the scratch event of the test notification
    std::optional<Moment> lastNotification;
    Content voice;
    Content mail;
    std::vector<Assignment> devices;  // by kind and key
};

struct Exclusion {
    std::string source;  // with its case folded
    long id = -1;        // -1 for all ids of the source
};

struct NotificationSettings {
    std::chrono::seconds pollingInterval{10};
    std::chrono::minutes notificationInterval{15};
    int reportAging = 30;  // days
    bool everything = false;
    std::string logFile;  // empty when no log is wanted
};

struct Monitoring {
    std::vector<MonitoredEvent> events;  // by key
    std::vector<Device> devices;
    std::vector<Exclusion> exclusions;
    NotificationSettings settings;

    // Indexes into `events`.
    std::unordered_map<std::string, std::vector<std::size_t>> eventsBySource;  // with its case folded
    std::vector<std::size_t> collections;
    std::unordered_map<long, std::size_t> eventsByKey;

    // Nothing when there is no such event.
    const MonitoredEvent* find(long eventKey) const;
};

// Reads all of it in one transaction's view of the database. Raises platform::Failure.
Monitoring readMonitoring(platform::Connection& database);

}  // namespace service
