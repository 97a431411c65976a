// One connection of libcurl that can be given up at any moment.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <vector>

#include "service/transports/transport.h"

namespace service {

// Prepares the library; called by several threads.
void initializeCurl();

// Whether a failure means that the connection would not be safe: no TLS, or a certificate that does not hold.
bool isUnsafe(CURLcode code);

class CurlSession {
  public:
    CurlSession();
    ~CurlSession();
    CurlSession(const CurlSession&) = delete;
    CurlSession& operator=(const CurlSession&) = delete;

    // The handle, with nothing set on it but what is common to all: no proxy, no file of passwords, no
    // signals. None when the machine has no memory left.
    CURL* fresh();
    // Does what was set, looking at the deadline ten times a second; CURLE_ABORTED_BY_CALLBACK when it was
    // over. With `stays` the connection can be written to until the next fresh().
    CURLcode run(const Deadline& deadline, bool stays = false);
    // Ends the connection without a goodbye, which a silent server would never answer.
    void hangUp() noexcept;

  private:
    static int opened(void* self, curl_socket_t socket, curlsocktype);
    static int closed(void* self, curl_socket_t socket);
    void leaveGroup() noexcept;

    std::vector<curl_socket_t> sockets_;
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> group_;
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy_;
    bool isInGroup_ = false;
};

}  // namespace service
