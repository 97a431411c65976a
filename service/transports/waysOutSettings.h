// Which ways out this host has, as its registry says. Whoever only asks needs none of the transports.
#pragma once

#include <filesystem>
#include <string>

#include "service/transports/deviceKind.h"
#include "service/transports/smtp.h"
#include "service/transports/snmpTrap.h"
#include "service/transports/syslog.h"

namespace service {

struct WaysOutSettings {
    SmtpSettings mail;
    std::string mailProblem = "the registry has not been read";  // empty when mail can be sent
    std::string mailDomain;                                      // of the people and lists in the directory
    std::string pagerGateway;
    SnmpSettings snmp;
    std::string snmpProblem = "the registry has not been read";
    SyslogSettings syslog;
    std::string syslogProblem;
    std::filesystem::path mailFolder;  // the host's own mailboxes, for mail without a relay

    bool operator==(const WaysOutSettings&) const = default;
};

// Reads the values below the product's key: Mail (Relay, Tls, User, PasswordFile, From, CaFile, Domain),
// Pager (Gateway), Snmp (Version, Inform, User, AuthFile, PrivFile, Enterprise) and Syslog (Facility,
// CaFile); and the sinks where the host keeps them. Raises platform::Failure for a registry that cannot be
// read.
WaysOutSettings readWaysOut();

// Why devices of a kind cannot be reached, and what to set up; empty when they can.
std::string problemOf(const WaysOutSettings& settings, DeviceKind kind);
// How they are reached, in a few words: "mail by smtp://relay:25".
std::string describe(const WaysOutSettings& settings, DeviceKind kind);

}  // namespace service
