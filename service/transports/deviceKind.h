// The kinds of devices that a recipient has. The numbers are shared with the console.
#pragma once

namespace service {

enum class DeviceKind : long { voiceMail = 1, pager, email, smtpAddress, snmpTrap, syslog, failover };

}  // namespace service
