// Kinds of devices and of what an address resolves to. The numbers are shared with the service.
#pragma once

namespace mdlDatabase {

enum DeviceType : long { voiceMail = 1, pager, email, smtpAddress, snmpTrap, syslog, failover };

enum AddressType : long {
    addressNotFound = 0,
    addressSubscriber,
    addressDistributionList,
    addressPager,
    addressSmtp,
    addressSnmpTrap,
    addressSyslog,
    addressFailover
};

// What DeviceAddress holds of the kinds that have no address of their own.
inline constexpr char snmpTrapAddress[] = "SNMP TRAP";
inline constexpr char failoverAddress[] = "Failover";

// Number of a device type, 0 for all of them in counts.
inline constexpr long allDeviceTypes = 0;

}  // namespace mdlDatabase
