#include "service/transports/nameSearch.h"

#include <utility>

#include "service/transports/abandonable.h"

namespace service {

namespace {

struct Found {
    int error = 0;
    Addresses addresses;
};

}  // namespace

Addresses findHost(const std::string& host, const std::string& port, const Deadline& deadline,
                   std::string& reason) {
    auto found = abandonable<Found>(
        [host, port] {
        addrinfo hints{};
        hints.ai_socktype = SOCK_DGRAM;
        hints.ai_flags = AI_ADDRCONFIG;
        addrinfo* first = nullptr;
        const int error = ::getaddrinfo(host.c_str(), port.c_str(), &hints, &first);
        return Found{error, Addresses(error == 0 ? first : nullptr)};
        },
        deadline);
    reason = !found              ? "the name server does not answer"
             : found->error != 0 ? ::gai_strerror(found->error)
                                 : "";
    return found ? std::move(found->addresses) : Addresses();
}

}  // namespace service
