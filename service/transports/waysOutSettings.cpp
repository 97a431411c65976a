#include "service/transports/waysOutSettings.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <utility>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/machine/host.h"
#include "platform/registry/productKey.h"
#include "platform/registry/registry.h"

namespace service {

namespace {

std::string textValue(const char* key, const char* name) {
    const auto value = platform::registry().value(
        std::string("HKEY_LOCAL_MACHINE\\") + platform::productKey + '\\' + key, name);
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? *text : std::string();
}

// The first line of a file that nobody else can read. Raises platform::Failure, also for one that others can.
std::string secretFrom(const std::string& file) {
    constexpr std::size_t longest = 4096;
    const platform::Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status {};
    if (!opened || ::fstat(opened.get(), &status) != 0)
        throw platform::failureFromErrno(errno, file);
    const bool isOwners = status.st_uid == ::geteuid() || status.st_uid == 0;
    if (!S_ISREG(status.st_mode) || !isOwners || (status.st_mode & 077) != 0)
        throw platform::makeFailure(platform::permissionDenied,
                                    file + " has to be an ordinary file that only its owner can read");
    std::array<char, longest> text{};
    const ssize_t size = ::read(opened.get(), text.data(), text.size());
    if (size < 0)
        throw platform::failureFromErrno(errno, file);
    const std::string all(text.data(), static_cast<std::size_t>(size));
    return all.substr(0, all.find_first_of("\r\n"));
}

bool isLoopback(const std::string& relay) {
    const std::string host = hostOfRelay(relay);
    in_addr address{};
    return host == "localhost" || host == "::1" || host == "[::1]" ||
           (::inet_pton(AF_INET, host.c_str(), &address) == 1 && (ntohl(address.s_addr) >> 24) == 127);
}

std::string machineName() {
    const std::string name = platform::computerName();
    return name.empty() ? "localhost" : name;
}

std::string problemOfMail(const SmtpSettings& mail) {
    if (!isMailAddress(mail.from))
        return "the value Mail\\From is no mail address: " + mail.from;
    if (mail.relay.empty())
        return {};
    const std::string problem = problemOfRelay(mail.relay);
    return problem.empty() ? problem : "the value Mail\\Relay cannot be used: " + problem;
}

// "host", "host:port" or "[v6]:port".
SnmpSink sinkOf(const std::string& community, const std::string& address) {
    const SyslogTarget target = syslogTarget(address);
    const bool namesPort = address.ends_with(':' + target.port);
    return {community, target.problem.empty() ? target.host : address,
            namesPort ? target.port : SnmpSink().port};
}

std::vector<SnmpSink> readSinks() {
    constexpr char key[] =
        "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\TrapConfiguration";
    std::vector<SnmpSink> sinks;
    for (const std::string& community : platform::registry().subkeys(key))
        if (const auto values = platform::registry().key(std::string(key) + '\\' + community))
            for (const auto& [name, value] : values->values)
                if (const auto* address = std::get_if<std::string>(&value); address && !address->empty())
                    sinks.push_back(sinkOf(community, *address));
    return sinks;
}

// Gives what is wrong; empty when nothing is.
std::string readEnterprise(SnmpSettings& snmp) {
    const std::string number = textValue("Snmp", "Enterprise");
    const char* const end = number.data() + number.size();
    const auto read = std::from_chars(number.data(), end, snmp.enterprise);
    const bool isNumber = read.ec == std::errc{} && read.ptr == end && snmp.enterprise > 0;
    return number.empty() || isNumber ? "" : "the value Snmp\\Enterprise is no number: " + number;
}

std::string readPhrases(SnmpSettings& snmp) {
    constexpr std::size_t shortest = 8;
    snmp.user = textValue("Snmp", "User");
    try {
        snmp.authPhrase = secretFrom(textValue("Snmp", "AuthFile"));
        snmp.privPhrase = secretFrom(textValue("Snmp", "PrivFile"));
    } catch (const platform::Failure& failure) {
        return "a pass phrase cannot be used: " + failure.description();
    }
    if (snmp.authPhrase.size() < shortest || snmp.privPhrase.size() < shortest)
        return "the pass phrases of version 3 have eight characters at least";
    return snmp.user.empty() ? "the value Snmp\\User is missing" : "";
}

std::string readSnmp(SnmpSettings& snmp) {
    snmp.sinks = readSinks();
    const std::string version = textValue("Snmp", "Version");
    const std::string inform = textValue("Snmp", "Inform");
    snmp.isVersion3 = version == "3";
    snmp.informs = inform == "1";
    if (snmp.sinks.empty())
        return "the host's SNMP service has no trap destination";
    if (!version.empty() && version != "3" && version != "2c")
        return "the value Snmp\\Version is \"2c\" or \"3\", not \"" + version + "\"";
    if (!inform.empty() && inform != "1" && inform != "0")
        return "the value Snmp\\Inform is \"0\" or \"1\", not \"" + inform + "\"";
    if (std::string problem = readEnterprise(snmp); !problem.empty())
        return problem;
    return snmp.isVersion3 ? readPhrases(snmp) : std::string();
}

}  // namespace

WaysOutSettings readWaysOut() {
    WaysOutSettings settings;
    SmtpSettings& mail = settings.mail;
    settings.mailDomain = textValue("Mail", "Domain");
    if (settings.mailDomain.empty())
        settings.mailDomain = machineName();
    mail.relay = textValue("Mail", "Relay");
    mail.user = textValue("Mail", "User");
    mail.caFile = textValue("Mail", "CaFile");
    mail.from = textValue("Mail", "From");
    if (mail.from.empty())
        mail.from = "quillon@" + settings.mailDomain;
    // A connection without TLS has to be asked for, but for one that does not leave the machine.
    const std::string tls = textValue("Mail", "Tls");
    mail.requiresTls = tls.empty() ? !isLoopback(mail.relay) : tls != "none";
    settings.mailProblem = problemOfMail(mail);
    if (!tls.empty() && tls != "none" && tls != "required")
        settings.mailProblem = "the value Mail\\Tls is \"required\" or \"none\", not \"" + tls + "\"";
    if (const std::string file = textValue("Mail", "PasswordFile"); !file.empty()) {
        try {
            mail.password = secretFrom(file);
        } catch (const platform::Failure& failure) {
            settings.mailProblem = "the password cannot be used: " + failure.description();
        }
    }
    settings.pagerGateway = textValue("Pager", "Gateway");
    settings.snmpProblem = readSnmp(settings.snmp);
    settings.syslog.caFile = textValue("Syslog", "CaFile");
    if (const std::string facility = textValue("Syslog", "Facility"); !facility.empty()) {
        settings.syslog.facility = syslogFacility(facility);
        if (settings.syslog.facility < 0)
            settings.syslogProblem = "the value Syslog\\Facility, " + facility + ", is no facility";
    }
    settings.mailFolder = platform::host::folder() / "mail";
    return settings;
}

std::string problemOf(const WaysOutSettings& settings, DeviceKind kind) {
    switch (kind) {
        case DeviceKind::voiceMail:
        case DeviceKind::email:
        case DeviceKind::smtpAddress:
            return settings.mailProblem;
        case DeviceKind::pager:
            if (settings.pagerGateway.empty())
                return std::string("the value Pager\\Gateway is missing: a mail address with ") +
                       numberPlace + " in it";
            if (settings.pagerGateway.find(numberPlace) == std::string::npos)
                return std::string("the value Pager\\Gateway has no ") + numberPlace + " in it";
            return settings.mailProblem;
        case DeviceKind::failover:
            return {};
        case DeviceKind::syslog:
            return settings.syslogProblem;
        case DeviceKind::snmpTrap:
            return settings.snmpProblem;
    }
    return "the service has no way out to devices of type " + std::to_string(static_cast<long>(kind));
}

std::string describe(const WaysOutSettings& settings, DeviceKind kind) {
    const std::string mail =
        settings.mail.relay.empty()
            ? "the host's own mailboxes in " + settings.mailFolder.string()
            : settings.mail.relay + (settings.mail.requiresTls ? ", TLS required" : ", without TLS");
    switch (kind) {
        case DeviceKind::pager:
            return "mail to " + settings.pagerGateway + " by " + mail;
        case DeviceKind::snmpTrap:
            return std::to_string(settings.snmp.sinks.size()) +
                   (settings.snmp.informs ? " sinks, informs" : " sinks, traps") +
                   (settings.snmp.isVersion3 ? " of version 3" : " of version 2c");
        case DeviceKind::syslog:
            return "RFC 5424 to the address of the device, facility " +
                   std::to_string(settings.syslog.facility);
        case DeviceKind::failover:
            return "the node manager of this host";
        case DeviceKind::voiceMail:
        case DeviceKind::email:
            return mail + "; addresses at " + settings.mailDomain;
        default:
            return mail;
    }
}

}  // namespace service
