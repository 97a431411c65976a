#include "bench/smtpSink.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "bench/workplace.h"

namespace bench {

namespace {

constexpr int pauseBetweenLooks = 50;

void say(int socket, std::string_view line) {
    insist(::send(socket, line.data(), line.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(line.size()),
           "the mail server cannot answer");
}

}  // namespace

SmtpSink::SmtpSink() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    insist(::bind(listener_.get(), reinterpret_cast<sockaddr*>(&place), sizeof place) == 0 &&
               ::listen(listener_.get(), 16) == 0,
           "the mail server cannot listen");
    acceptor_ = std::jthread([this] { accept(); });
}

SmtpSink::~SmtpSink() {
    isEnding_ = true;
    acceptor_.join();
}

std::string SmtpSink::url() const {
    sockaddr_in place{};
    socklen_t size = sizeof place;
    ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&place), &size);
    return "smtp://127.0.0.1:" + std::to_string(ntohs(place.sin_port));
}

void SmtpSink::accept() {
    while (!isEnding_) {
        pollfd ready{listener_.get(), POLLIN, 0};
        if (::poll(&ready, 1, pauseBetweenLooks) <= 0)
            continue;
        const int socket = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
        if (socket >= 0)
            connections_.emplace_back([this, socket] { serve(socket); });
    }
}

void SmtpSink::serve(int socket) {
    const platform::Descriptor owner(socket);
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    say(socket, "220 sink\r\n");
    std::array<char, 65536> piece{};
    std::string text;
    bool isInMail = false;
    while (!isEnding_) {
        pollfd ready{socket, POLLIN, 0};
        if (::poll(&ready, 1, pauseBetweenLooks) <= 0)
            continue;
        const ssize_t size = ::recv(socket, piece.data(), piece.size(), 0);
        if (size <= 0)
            return;
        text.append(piece.data(), static_cast<std::size_t>(size));
        for (std::size_t at; (at = text.find(isInMail ? "\r\n.\r\n" : "\r\n")) != std::string::npos;) {
            const std::string line = text.substr(0, at);
            text.erase(0, at + (isInMail ? 5 : 2));
            if (isInMail)
                ++taken_;
            isInMail = !isInMail && line == "DATA";
            if (line == "QUIT")
                return;
            say(socket, isInMail ? "354 go on\r\n" : "250 ok\r\n");
        }
    }
}

}  // namespace bench
