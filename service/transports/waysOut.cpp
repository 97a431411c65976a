#include "service/transports/waysOut.h"

#include <utility>

#include "service/transports/failover.h"
#include "service/transports/mailbox.h"
#include "service/transports/pager.h"

namespace service {

namespace {

bool isMail(DeviceKind kind) {
    return kind == DeviceKind::voiceMail || kind == DeviceKind::email || kind == DeviceKind::smtpAddress;
}

std::unique_ptr<Transport> makeMail(const WaysOutSettings& settings) {
    if (settings.mail.relay.empty())
        return std::make_unique<Mailbox>(settings.mailFolder, settings.mail.from);
    return std::make_unique<Smtp>(settings.mail);
}

}  // namespace

std::unique_ptr<Transport> makeTransport(const WaysOutSettings& settings, DeviceKind kind) {
    if (!problemOf(settings, kind).empty())
        return nullptr;
    if (isMail(kind))
        return makeMail(settings);
    if (kind == DeviceKind::pager)
        return std::make_unique<Pager>(makeMail(settings), settings.pagerGateway);
    if (kind == DeviceKind::syslog)
        return std::make_unique<Syslog>(settings.syslog);
    if (kind == DeviceKind::snmpTrap)
        return std::make_unique<SnmpTrap>(settings.snmp);
    return kind == DeviceKind::failover ? std::make_unique<Failover>() : nullptr;
}

bool WaysOut::refresh() {
    WaysOutSettings present = readWaysOut();
    const std::lock_guard lock(mutex_);
    if (present == settings_)
        return false;
    settings_ = std::move(present);
    return true;
}

WaysOutSettings WaysOut::settings() const {
    const std::lock_guard lock(mutex_);
    return settings_;
}

}  // namespace service
