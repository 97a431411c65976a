// A port that nobody has at this moment.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <string>

#include "platform/files/descriptor.h"

namespace support {

// Of the loopback interface; `type` is SOCK_STREAM or SOCK_DGRAM.
inline std::string freePort(int type) {
    const platform::Descriptor socket(::socket(AF_INET, type, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return {};
    return std::to_string(ntohs(address.sin_port));
}

}  // namespace support
