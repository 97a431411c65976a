#include "service/transports/addresses.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstring>
#include <utility>

namespace service {

namespace {

bool isPort(const std::string& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() && number > 0 && number < 65536;
}

bool isHost(const std::string& text) {
    return !text.empty() && text.size() < 256 && std::ranges::all_of(text, [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) ||
               std::string_view(".-_:%").find(c) != std::string_view::npos;
    });
}

bool isControl(char character) noexcept {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

std::string inLowerCase(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

struct Relay {
    std::string host;
    std::string problem;
};

// What stands behind "smtp://" or "smtps://".
Relay relayAt(std::string place) {
    constexpr char noAddress[] = "it is no address of a relay";
    const std::size_t end = std::min(place.find_first_of("/?#"), place.size());
    const std::string behind = place.substr(end);
    place.resize(end);
    if (place.find('@') != std::string::npos)
        return {{}, "the user stands in a value of its own"};
    // A colon within brackets belongs to the host.
    const std::size_t bracket = place.starts_with('[') ? place.find(']') : 0;
    if (bracket == std::string::npos)
        return {{}, noAddress};
    const std::size_t colon = std::min(place.find(':', bracket), place.size());
    const std::string host = place.substr(0, colon);
    const bool isBracketed = bracket > 0;
    const bool isNamed =
        isBracketed ? host.size() == bracket + 1 && isHost(host.substr(1, bracket - 1)) : isHost(host);
    if (!isNamed || (colon + 1 < place.size() && !isPort(place.substr(colon + 1))))
        return {{}, noAddress};
    return {host, behind.empty() || behind == "/" ? "" : "there is more behind the host"};
}

Relay relayOf(const std::string& text) {
    const std::size_t scheme = text.find("://");
    if (scheme == std::string::npos)
        return {{}, "it is no address of a relay"};
    const std::string name = inLowerCase(text.substr(0, scheme));
    if (name != "smtp" && name != "smtps")
        return {{}, "it begins with neither smtp:// nor smtps://"};
    return relayAt(text.substr(scheme + 3));
}

}  // namespace

bool isMailAddress(std::string_view text) noexcept {
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char character) {
        return isControl(character) ||
               std::string_view(" <>,;:\"\\()").find(character) != std::string_view::npos;
    });
}

std::string problemOfRelay(const std::string& relay) {
    return relayOf(relay).problem;
}

std::string hostOfRelay(const std::string& relay) {
    return relayOf(relay).host;
}

SyslogTarget syslogTarget(const std::string& address) {
    constexpr std::pair<const char*, SyslogTarget::Way> schemes[] = {{"udp://", SyslogTarget::Way::udp},
                                                                     {"tcp://", SyslogTarget::Way::tcp},
                                                                     {"tls://", SyslogTarget::Way::tls}};
    SyslogTarget target;
    std::string rest = address;
    for (const auto& [scheme, way] : schemes)
        if (address.starts_with(scheme)) {
            target.way = way;
            rest = address.substr(std::strlen(scheme));
        }
    if (target.way == SyslogTarget::Way::tls)
        target.port = "6514";
    std::string port;
    if (rest.starts_with('[')) {
        const std::size_t end = std::min(rest.find(']'), rest.size());
        target.host = rest.substr(1, end - 1);
        port = end < rest.size() ? rest.substr(end + 1) : "no bracket";
    } else if (const std::size_t colon = rest.find(':'); colon == rest.rfind(':')) {
        target.host = rest.substr(0, colon);
        port = colon == std::string::npos ? "" : rest.substr(colon);
    } else {
        target.host = rest;  // a bare address of version 6
    }
    if (!port.empty() && port.front() == ':')
        target.port = port.substr(1);
    if (!isHost(target.host) || !isPort(target.port) || (!port.empty() && port.front() != ':'))
        target.problem = "\"" + address + "\" is no address of a syslog server";
    return target;
}

int syslogFacility(const std::string& text) {
    constexpr std::array<const char*, 24> names{"kern",   "user",   "mail",   "daemon", "auth",     "syslog",
                                                "lpr",    "news",   "uucp",   "cron",   "authpriv", "ftp",
                                                "ntp",    "audit",  "alert",  "clock",  "local0",   "local1",
                                                "local2", "local3", "local4", "local5", "local6",   "local7"};
    for (std::size_t i = 0; i < names.size(); ++i)
        if (text == names[i] || text == std::to_string(i))
            return static_cast<int>(i);
    return -1;
}

}  // namespace service
