#include "service/transports/smtp.h"

#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "service/transports/mailMessage.h"

namespace service {

namespace {

constexpr int pollMilliseconds = 100;

void initializeOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::string partOf(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, 0) != CURLUE_OK)
        return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
    return text;
}

// The name that the relay is greeted with.
std::string ownName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 && name[0] ? name.data() : "localhost";
}

std::string withCrLf(const std::string& text) {
    std::string result;
    result.reserve(text.size() + text.size() / 32);
    for (const char c : text)
        result.append(c == '\n' ? "\r\n" : std::string_view(&c, 1));
    return result;
}

// What is still to be given to the relay.
struct Upload {
    std::string_view rest;
    static std::size_t read(char* buffer, std::size_t size, std::size_t count, void* self) {
        std::string_view& rest = static_cast<Upload*>(self)->rest;
        const std::size_t taken = rest.copy(buffer, size * count);
        rest.remove_prefix(taken);
        return taken;
    }
};

std::size_t ignore(char*, std::size_t size, std::size_t count, void*) {
    return size * count;
}

// The last answer of the relay that is one, a number of three digits and words, but for its goodbye.
std::size_t keepAnswer(char* line, std::size_t size, std::size_t count, void* self) {
    std::string_view text(line, size * count);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    const bool isAnswer = text.size() >= 3 && std::all_of(text.begin(), text.begin() + 3, [](char c) {
                              return std::isdigit(static_cast<unsigned char>(c));
                          });
    if (isAnswer && !text.starts_with("221")) {
        std::string& kept = *static_cast<std::string*>(self);
        kept.clear();
        // What a relay says goes into logs and lists: one line of readable characters.
        for (const char c : text.substr(0, 500))
            kept += static_cast<unsigned char>(c) < ' ' || c == 127 ? ' ' : c;
    }
    return size * count;
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

Outcome outcomeOf(CURLcode code, const std::string& answer, const char* details) {
    if (code == CURLE_OK)
        return {Result::delivered, answer.empty() ? "Delivered" : "Delivered: " + answer};
    const std::string reason = details[0] ? details : curl_easy_strerror(code);
    if (isUnsafe(code))
        return {Result::refused, "The connection to the relay is not safe: " + reason};
    if (answer.starts_with('5'))
        return {Result::refused, answer};
    if (answer.starts_with('4'))
        return {Result::tryAgain, answer};
    if (code == CURLE_LOGIN_DENIED)
        return {Result::refused, "The relay does not accept the sign-in: " + reason};
    return {Result::tryAgain, reason};
}

}  // namespace

std::string problemOfRelay(const std::string& relay) {
    initializeOnce();
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), &curl_url_cleanup);
    if (curl_url_set(url.get(), CURLUPART_URL, relay.c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK)
        return "it is no address of a relay";
    const std::string scheme = partOf(url.get(), CURLUPART_SCHEME);
    if (scheme != "smtp" && scheme != "smtps")
        return "it begins with neither smtp:// nor smtps://";
    if (!partOf(url.get(), CURLUPART_USER).empty())
        return "the user stands in a value of its own";
    const std::string path = partOf(url.get(), CURLUPART_PATH);
    return path.empty() || path == "/" ? "" : "there is more behind the host";
}

// The library's handles. The relay's connection lives in the group.
class Smtp::Session {
  public:
    Session() : group_(curl_multi_init(), &curl_multi_cleanup), easy_(curl_easy_init(), &curl_easy_cleanup) {}

    ~Session() { hangUp(); }

    Outcome perform(const SmtpSettings& settings, const Message* message, const Deadline& deadline) {
        if (!group_ || !easy_)
            return {Result::tryAgain, "out of memory"};
        std::string answer;
        std::array<char, CURL_ERROR_SIZE> details{};
        const std::string text = message ? withCrLf(mailMessage(*message, settings.from)) : std::string();
        Upload upload{text};
        CURL* const easy = easy_.get();
        curl_easy_reset(easy);
        setUp(settings);
        curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, details.data());
        curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &keepAnswer);
        curl_easy_setopt(easy, CURLOPT_HEADERDATA, &answer);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &ignore);
        std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> to(nullptr, &curl_slist_free_all);
        if (message) {
            to.reset(curl_slist_append(nullptr, ('<' + message->address + '>').c_str()));
            curl_easy_setopt(easy, CURLOPT_MAIL_FROM, ('<' + settings.from + '>').c_str());
            curl_easy_setopt(easy, CURLOPT_MAIL_RCPT, to.get());
            curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
            curl_easy_setopt(easy, CURLOPT_READFUNCTION, &Upload::read);
            curl_easy_setopt(easy, CURLOPT_READDATA, &upload);
        } else {
            // Asks for nothing; the answer comes after the sign-in.
            curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, "NOOP");
        }
        const CURLcode code = run(deadline);
        if (code == CURLE_ABORTED_BY_CALLBACK)
            return {Result::tryAgain, "The relay did not answer in time"};
        return outcomeOf(code, answer, details.data());
    }

  private:
    void setUp(const SmtpSettings& settings) {
        CURL* const easy = easy_.get();
        curl_easy_setopt(easy, CURLOPT_URL,
                         (settings.relay + (settings.relay.ends_with('/') ? "" : "/") + ownName()).c_str());
        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "smtp,smtps");
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
        curl_easy_setopt(easy, CURLOPT_SOCKOPTFUNCTION, &opened);
        curl_easy_setopt(easy, CURLOPT_SOCKOPTDATA, this);
        curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &closed);
        curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
        // No proxy of the environment: mail goes where the settings say.
        curl_easy_setopt(easy, CURLOPT_PROXY, "");
        curl_easy_setopt(easy, CURLOPT_USE_SSL,
                         static_cast<long>(settings.requiresTls ? CURLUSESSL_ALL : CURLUSESSL_NONE));
        if (!settings.caFile.empty())
            curl_easy_setopt(easy, CURLOPT_CAINFO, settings.caFile.c_str());
        if (!settings.user.empty()) {
            curl_easy_setopt(easy, CURLOPT_USERNAME, settings.user.c_str());
            curl_easy_setopt(easy, CURLOPT_PASSWORD, settings.password.c_str());
        }
    }

    // The handle leaves the group in any case; what it was doing ends there.
    CURLcode run(const Deadline& deadline) {
        curl_multi_add_handle(group_.get(), easy_.get());
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
        curl_multi_remove_handle(group_.get(), easy_.get());
        return result;
    }

    // The library would say goodbye and wait two minutes for the answer of a relay that gives none.
    void hangUp() {
        for (const curl_socket_t each : sockets_)
            ::shutdown(each, SHUT_RDWR);
    }
    static int opened(void* self, curl_socket_t socket, curlsocktype) {
        static_cast<Session*>(self)->sockets_.push_back(socket);
        return CURL_SOCKOPT_OK;
    }
    static int closed(void* self, curl_socket_t socket) {
        std::erase(static_cast<Session*>(self)->sockets_, socket);
        return ::close(socket);
    }

    std::vector<curl_socket_t> sockets_;

    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> group_;
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy_;
};

Smtp::Smtp(SmtpSettings settings) : settings_(std::move(settings)) {
    initializeOnce();
    session_ = std::make_unique<Session>();
}

Smtp::~Smtp() = default;

Outcome Smtp::send(const Message& message, const Deadline& deadline) {
    if (!isMailAddress(message.address))
        return {Result::refused, "No mail address: " + message.address};
    if (!isMailAddress(settings_.from))
        return {Result::refused, "The sender is no mail address: " + settings_.from};
    if (const std::string problem = problemOfRelay(settings_.relay); !problem.empty())
        return {Result::refused, "The relay " + settings_.relay + " cannot be used: " + problem};
    return session_->perform(settings_, &message, deadline);
}

Outcome Smtp::probe(const Deadline& deadline) {
    if (const std::string problem = problemOfRelay(settings_.relay); !problem.empty())
        return {Result::refused, "The relay " + settings_.relay + " cannot be used: " + problem};
    return session_->perform(settings_, nullptr, deadline);
}

}  // namespace service
