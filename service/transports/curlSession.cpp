#include "service/transports/curlSession.h"

#include <sys/socket.h>
#include <unistd.h>

#include <mutex>
#include <utility>

namespace service {

namespace {

// Seconds. A relay may look through a mail for long before it says that it has taken it, and would be given
// the mail again if it were not waited for.
constexpr long longestConnect = 30;
constexpr long longestSilence = 300;

}  // namespace

void initializeCurl() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

bool isUnsafe(CURLcode code) {
    switch (code) {
        case CURLE_USE_SSL_FAILED:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_ISSUER_ERROR:
            return true;
        default:
            return false;
    }
}

CurlSession::CurlSession()
    : group_((initializeCurl(), curl_multi_init()), &curl_multi_cleanup),
      easy_(curl_easy_init(), &curl_easy_cleanup) {}

CurlSession::~CurlSession() {
    hangUp();
    leaveGroup();
}

CURL* CurlSession::fresh() {
    if (!group_ || !easy_)
        return nullptr;
    leaveGroup();
    CURL* const easy = easy_.get();
    curl_easy_reset(easy);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // Giving up does not wait for a name server that is silent.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, longestConnect);
    curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, longestSilence);
    curl_easy_setopt(easy, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    // No proxy of the environment: what is sent goes where the settings say.
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_SOCKOPTFUNCTION, &opened);
    curl_easy_setopt(easy, CURLOPT_SOCKOPTDATA, this);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &closed);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
    return easy;
}

CURLcode CurlSession::run(const Deadline& deadline, bool stays) {
    constexpr int pollMilliseconds = 100;
    curl_multi_add_handle(group_.get(), easy_.get());
    isInGroup_ = true;
    CURLcode result = CURLE_ABORTED_BY_CALLBACK;
    int running = 1;
    while (running > 0 && !deadline.isOver()) {
        if (curl_multi_perform(group_.get(), &running) != CURLM_OK) {
            result = CURLE_OUT_OF_MEMORY;
            break;
        }
        int left = 0;
        while (const CURLMsg* const ended = curl_multi_info_read(group_.get(), &left))
            if (ended->msg == CURLMSG_DONE)
                result = ended->data.result;
        if (running > 0)
            curl_multi_poll(group_.get(), nullptr, 0, pollMilliseconds, nullptr);
    }
    if (running > 0)
        hangUp();
    if (!stays || result != CURLE_OK)
        leaveGroup();
    return result;
}

void CurlSession::leaveGroup() noexcept {
    if (std::exchange(isInGroup_, false))
        curl_multi_remove_handle(group_.get(), easy_.get());
}

void CurlSession::hangUp() noexcept {
    for (const curl_socket_t each : sockets_)
        ::shutdown(each, SHUT_RDWR);
}

int CurlSession::opened(void* self, curl_socket_t socket, curlsocktype) {
    static_cast<CurlSession*>(self)->sockets_.push_back(socket);
    return CURL_SOCKOPT_OK;
}

int CurlSession::closed(void* self, curl_socket_t socket) {
    std::erase(static_cast<CurlSession*>(self)->sockets_, socket);
    return ::close(socket);
}

}  // namespace service
