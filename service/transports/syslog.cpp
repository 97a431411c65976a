#include "service/transports/syslog.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <ctime>
#include <string_view>
#include <utility>

#include "platform/files/descriptor.h"
#include "service/transports/curlSession.h"
#include "service/transports/nameSearch.h"

namespace service {

namespace {

constexpr std::size_t longestDatagram = 2048;
constexpr std::size_t longestFrame = 16384;

// 0, or the error. A machine on which nobody listens says so soon, one further away perhaps never.
int sendTo(const addrinfo& address, const std::string& line) {
    constexpr int milliseconds = 100;
    const platform::Descriptor socket(::socket(address.ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket || ::connect(socket.get(), address.ai_addr, address.ai_addrlen) != 0 ||
        ::send(socket.get(), line.data(), line.size(), 0) < 0)
        return errno;
    pollfd answer{socket.get(), 0, 0};
    int error = 0;
    socklen_t size = sizeof error;
    if (::poll(&answer, 1, milliseconds) > 0)
        ::getsockopt(socket.get(), SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

Outcome sendDatagram(const SyslogTarget& target, const std::string& line, const Deadline& deadline) {
    std::string reason;
    const Addresses addresses = findHost(target.host, target.port, deadline, reason);
    for (const addrinfo* each = addresses.get(); each; each = each->ai_next) {
        const int error = sendTo(*each, line);
        if (error == 0)
            return {Result::handedOver, "Handed over to " + target.host + " by UDP"};
        reason = std::strerror(error);
    }
    return {Result::tryAgain, target.host + ": " + reason};
}

Outcome sendAll(CURL* easy, std::string_view text, const Deadline& deadline) {
    curl_socket_t socket = CURL_SOCKET_BAD;
    curl_easy_getinfo(easy, CURLINFO_ACTIVESOCKET, &socket);
    while (!text.empty()) {
        std::size_t sent = 0;
        const CURLcode code = curl_easy_send(easy, text.data(), text.size(), &sent);
        if (code != CURLE_OK && code != CURLE_AGAIN)
            return {Result::tryAgain, curl_easy_strerror(code)};
        text.remove_prefix(sent);
        if (deadline.isOver())
            return {Result::tryAgain, "The server did not take it in time"};
        if (code == CURLE_AGAIN) {
            pollfd room{socket, POLLOUT, 0};
            ::poll(&room, 1, 100);
        }
    }
    return {Result::handedOver, {}};
}

Outcome sendFrame(const SyslogTarget& target, const std::string& line, const std::string& caFile,
                  const Deadline& deadline) {
    const bool isTls = target.way == SyslogTarget::Way::tls;
    const std::string host =
        target.host.find(':') == std::string::npos ? target.host : '[' + target.host + ']';
    CurlSession session;
    CURL* const easy = session.fresh();
    if (!easy)
        return {Result::tryAgain, "out of memory"};
    std::array<char, CURL_ERROR_SIZE> details{};
    // The library only connects, and checks the certificate of https as it would for that.
    curl_easy_setopt(easy, CURLOPT_URL,
                     ((isTls ? "https://" : "http://") + host + ':' + target.port).c_str());
    curl_easy_setopt(easy, CURLOPT_CONNECT_ONLY, 1L);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, details.data());
    if (!caFile.empty())
        curl_easy_setopt(easy, CURLOPT_CAINFO, caFile.c_str());
    const CURLcode code = session.run(deadline, true);
    if (code == CURLE_ABORTED_BY_CALLBACK)
        return {Result::tryAgain, target.host + " did not answer in time"};
    if (code != CURLE_OK) {
        const std::string reason = details[0] ? details.data() : curl_easy_strerror(code);
        return isUnsafe(code) ? Outcome{Result::refused, "The connection is not safe: " + reason}
                              : Outcome{Result::tryAgain, reason};
    }
    Outcome outcome = sendAll(easy, std::to_string(line.size()) + ' ' + line, deadline);
    if (outcome.result == Result::handedOver)
        outcome.answer = "Handed over to " + target.host + (isTls ? " by TLS" : " by TCP");
    return outcome;
}

// A header's field: printable ASCII, a hyphen for none.
std::string headerField(const std::string& text, std::size_t most) {
    std::string result;
    for (const char c : text)
        if (c > ' ' && c < 127 && result.size() < most)
            result += c;
    return result.empty() ? "-" : result;
}

std::string parameter(const char* name, const std::string& value) {
    std::string result = std::string(" ") + name + "=\"";
    for (const char c : value) {
        if (c == '"' || c == '\\' || c == ']')
            result += '\\';
        result += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return result + '"';
}

std::string moment(std::chrono::system_clock::time_point when) {
    using namespace std::chrono;
    const auto whole = floor<milliseconds>(when);
    const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(whole));
    std::tm fields{};
    ::gmtime_r(&seconds, &fields);
    std::array<char, 40> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &fields);
    const std::string fraction =
        std::to_string(1000 + (whole.time_since_epoch() % std::chrono::seconds(1)).count());
    return std::string(text.data(), size) + fraction.substr(1) + 'Z';
}

// Line ends and other control characters become blanks, several of them one.
std::string onOneLine(const std::string& text) {
    std::string line;
    for (const char c : text)
        if (static_cast<unsigned char>(c) > ' ' && c != 127)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    return line;
}

}  // namespace

std::string syslogLine(const Message& message, int facility, std::size_t most) {
    constexpr int severities[] = {6, 3, 4, 6};  // of no type, errors, warnings, information
    const int severity = severities[message.eventType < 3 ? message.eventType : 3];
    std::string line = '<' + std::to_string(facility * 8 + severity) + ">1 " + moment(message.created) + ' ' +
                       headerField(message.computer, 255) + " HbQlnSvc - " + std::to_string(message.eventId) +
                       // 32473 is the number that documentation uses.
                       " [quillon@32473" + parameter("source", message.eventSource) +
                       parameter("id", std::to_string(message.eventId)) + "] \xEF\xBB\xBF" +
                       onOneLine(message.subject + ' ' + message.body);
    if (line.size() > most) {
        // Not within a character.
        while (most > 0 && (static_cast<unsigned char>(line[most]) & 0xC0) == 0x80)
            --most;
        line.resize(most);
    }
    return line;
}

Syslog::Syslog(SyslogSettings settings) : settings_(std::move(settings)) {}

Outcome Syslog::send(const Message& message, const Deadline& deadline) {
    const SyslogTarget target = syslogTarget(message.address);
    if (!target.problem.empty())
        return {Result::refused, target.problem};
    if (target.way == SyslogTarget::Way::udp)
        return sendDatagram(target, syslogLine(message, settings_.facility, longestDatagram), deadline);
    return sendFrame(target, syslogLine(message, settings_.facility, longestFrame), settings_.caFile,
                     deadline);
}

}  // namespace service
