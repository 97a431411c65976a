#include "host/machineMail.h"

#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <fstream>
#include <memory>

#include "platform/files/descriptor.h"
#include "platform/machine/host.h"

namespace host {

std::string mailName() {
    std::string name;
    std::ifstream("/etc/mailname") >> name;
    if (!name.empty())
        return name;
    const std::string own = platform::computerName();
    if (own.empty())
        return "localhost";
    addrinfo wanted{};
    wanted.ai_flags = AI_CANONNAME;
    addrinfo* found = nullptr;
    if (::getaddrinfo(own.c_str(), nullptr, &wanted, &found) != 0)
        return own;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
    return found->ai_canonname ? found->ai_canonname : own;
}

bool hasMailServer() {
    constexpr std::uint16_t mailPort = 25;
    constexpr int patience = 2000;
    const platform::Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(mailPort);
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0)
        return true;
    pollfd ready{socket.get(), POLLOUT, 0};
    int error = 0;
    socklen_t size = sizeof error;
    return ::poll(&ready, 1, patience) == 1 &&
           ::getsockopt(socket.get(), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

}  // namespace host
