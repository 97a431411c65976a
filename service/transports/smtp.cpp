#include "service/transports/smtp.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

#include "platform/machine/host.h"
#include "service/transports/curlSession.h"
#include "service/transports/mailMessage.h"

namespace service {

namespace {

// The name that the relay is greeted with.
std::string ownName() {
    const std::string name = platform::computerName();
    return name.empty() ? "localhost" : name;
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

Outcome outcomeOf(CURLcode code, const std::string& answer, const char* details) {
    if (code == CURLE_OK)
        return {Result::delivered, answer.empty() ? "Delivered" : "Delivered: " + answer};
    const std::string reason = details[0] ? details : curl_easy_strerror(code);
    // "Not at the moment", also to the wish for TLS.
    if (answer.starts_with('4'))
        return {Result::tryAgain, answer};
    if (isUnsafe(code))
        return {Result::refused, "The connection to the relay is not safe: " + reason};
    if (answer.starts_with('5'))
        return {Result::refused, answer};
    if (code == CURLE_LOGIN_DENIED)
        return {Result::refused, "The relay does not accept the sign-in: " + reason};
    return {Result::tryAgain, reason};
}

}  // namespace

// The connection to the relay, which is kept between mails.
class Smtp::Session {
  public:
    // Without a message the relay is asked for nothing, after the sign-in.
    Outcome perform(const SmtpSettings& settings, const Message* message, const Deadline& deadline) {
        CURL* const easy = connection_.fresh();
        if (!easy)
            return {Result::tryAgain, "out of memory"};
        std::string answer;
        std::array<char, CURL_ERROR_SIZE> details{};
        const std::string text = message ? withCrLf(mailMessage(*message, settings.from)) : std::string();
        Upload upload{text};
        setUp(easy, settings);
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
            curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, "NOOP");
        }
        const CURLcode code = connection_.run(deadline);
        if (code == CURLE_ABORTED_BY_CALLBACK)
            return {Result::tryAgain, "The relay did not answer in time"};
        return outcomeOf(code, answer, details.data());
    }

  private:
    static void setUp(CURL* easy, const SmtpSettings& settings) {
        const std::string url = settings.relay + (settings.relay.ends_with('/') ? "" : "/") + ownName();
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "smtp,smtps");
        curl_easy_setopt(easy, CURLOPT_USE_SSL,
                         static_cast<long>(settings.requiresTls ? CURLUSESSL_ALL : CURLUSESSL_NONE));
        if (!settings.caFile.empty())
            curl_easy_setopt(easy, CURLOPT_CAINFO, settings.caFile.c_str());
        if (!settings.user.empty()) {
            curl_easy_setopt(easy, CURLOPT_USERNAME, settings.user.c_str());
            curl_easy_setopt(easy, CURLOPT_PASSWORD, settings.password.c_str());
        }
    }

    CurlSession connection_;
};

Smtp::Smtp(SmtpSettings settings) : settings_(std::move(settings)), session_(std::make_unique<Session>()) {}

Smtp::~Smtp() = default;

Outcome Smtp::send(const Message& message, const Deadline& deadline) {
    if (!isMailAddress(message.address))
        return {Result::refused, "No mail address: " + message.address};
    if (!isMailAddress(settings_.from))
        return {Result::refused, "The sender is no mail address: " + settings_.from};
    if (const std::string problem = problemOfRelay(settings_.relay); !problem.empty())
        return {Result::refused, "The relay cannot be used: " + problem};
    return session_->perform(settings_, &message, deadline);
}

Outcome Smtp::probe(const Deadline& deadline) {
    if (const std::string problem = problemOfRelay(settings_.relay); !problem.empty())
        return {Result::refused, "The relay cannot be used: " + problem};
    return session_->perform(settings_, nullptr, deadline);
}

}  // namespace service
