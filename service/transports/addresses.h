// What may stand as an address: judged by the text alone, without asking anybody.
#pragma once

#include <string>
#include <string_view>

namespace service {

// Whether the text can stand as an address in a header without becoming anything else there.
bool isMailAddress(std::string_view text) noexcept;

// The place of the number in a pager gateway's address.
inline constexpr char numberPlace[] = "<Number>";

// Why the text cannot be a relay, in a few words; empty when it can.
std::string problemOfRelay(const std::string& relay);
// The relay's host, that of version 6 in its brackets; empty for a text that is no relay.
std::string hostOfRelay(const std::string& relay);

// Where a device's address leads to.
struct SyslogTarget {
    enum class Way { udp, tcp, tls } way = Way::udp;
    std::string host;
    std::string port = "514";
    std::string problem;  // why the address is none; empty when it is one
};
// "host", "host:port", "[v6]:port", or the same behind udp://, tcp:// or tls:// (port 6514).
SyslogTarget syslogTarget(const std::string& address);
// The number of a facility's name, such as "local0", or of its number as a text; -1 for another text.
int syslogFacility(const std::string& text);

}  // namespace service
