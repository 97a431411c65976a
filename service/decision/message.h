// A message as the decision renders it: for one device, with everything that any transport needs, so that
// nothing is looked up after this. What is in it stays as it was at this moment, however long it waits.
#pragma once

#include <cstdint>
#include <string>

namespace service {

// As the database stores it.
enum class DeviceType : int {
    voiceMail = 1,
    pager = 2,
    email = 3,
    smtpAddress = 4,
    snmpTrap = 5,
    syslog = 6,
    failover = 7
};

// As the database stores it.
enum class Priority : int { low = 0, normal = 1, urgent = 2 };

// The record of an event log that a message tells of.
struct ToldRecord {
    std::string log;   // "Application" or "System"
    std::string time;  // local time in stored form, "2026-11-24 14:05:09"
    std::string source;
    std::uint32_t id = 0;
    unsigned type = 1;  // 1 error, 2 warning, 4 information
    unsigned category = 0;
    std::string user;
    std::string computer;
    std::string description;
};

struct Message {
    std::int64_t key = 0;  // given by the outbox; also the LogKey of its row in the history
    std::string identity;  // with the key unique in the world: what a Message-ID is made of
    long eventKey = 0;
    std::string notes;  // the title of the monitored event
    long recipientKey = 0;
    std::string recipient;  // his name
    long deviceKey = 0;
    DeviceType type = DeviceType::smtpAddress;
    std::string address;  // where it goes; for voice mail and e-mail the mail alias of the directory entry
    std::string subject;  // one line
    std::string body;
    Priority priority = Priority::normal;
    std::string voiceFile;     // path of the file to attach; empty without one
    std::int64_t created = 0;  // seconds since 1970, UTC
    ToldRecord record;
};

}  // namespace service
