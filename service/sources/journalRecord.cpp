#include "service/sources/journalRecord.h"

#include <pwd.h>
#include <systemd/sd-journal.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>

#include "platform/machine/clock.h"
#include "service/sources/readableText.h"

namespace service {

namespace {

// A field that is there but cannot be read.
struct Unreadable {
    int error;
};

std::optional<std::string> field(sd_journal* journal, const char* name) {
    const void* data = nullptr;
    std::size_t size = 0;
    const int result = sd_journal_get_data(journal, name, &data, &size);
    if (result == -ENOENT)
        return std::nullopt;
    if (result < 0)
        throw Unreadable{-result};
    const std::size_t head = std::strlen(name) + 1;  // "NAME="
    return readableText(std::string_view(static_cast<const char*>(data), size).substr(head));
}

template <class Number>
std::optional<Number> number(std::string_view text, int base = 10) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

std::uint16_t typeOf(const std::optional<std::string>& priority) {
    constexpr int errorUpTo = 3;
    constexpr int warning = 4;
    const int level = number<int>(priority.value_or("")).value_or(6);
    return level < 0 || level > warning ? 4 : level <= errorUpTo ? 1 : 2;
}

std::uint32_t idOf(sd_journal* journal) {
    if (const auto given = number<std::uint32_t>(field(journal, "QLN_EVENT_ID").value_or("")))
        return *given;
    constexpr std::size_t hexDigits = 8;
    const std::string message = field(journal, "MESSAGE_ID").value_or("");
    if (const auto bits = number<std::uint32_t>(std::string_view(message).substr(0, hexDigits), 16))
        return *bits >> 1;
    return 0;
}

std::string userOf(const std::optional<std::string>& id) {
    const auto user = number<uid_t>(id.value_or(""));
    if (!user)
        return {};
    constexpr std::size_t enough = 16384;
    static thread_local std::array<char, enough> buffer;
    static thread_local uid_t lastUser = 0;
    static thread_local std::string lastName;
    if (!lastName.empty() && lastUser == *user)
        return lastName;
    passwd entry{};
    passwd* found = nullptr;
    const bool isKnown = ::getpwuid_r(*user, &entry, buffer.data(), buffer.size(), &found) == 0 && found;
    lastUser = *user;
    lastName = isKnown ? found->pw_name : *id;
    return lastName;
}

platform::EventRecord recordOf(sd_journal* journal) {
    platform::EventRecord record;
    std::uint64_t moment = 0;
    if (const int result = sd_journal_get_realtime_usec(journal, &moment); result < 0)
        throw Unreadable{-result};
    record.time = journalMoment(moment);
    const auto identifier = field(journal, "SYSLOG_IDENTIFIER");
    record.source = identifier ? *identifier : field(journal, "_COMM").value_or("");
    const bool isKernel = field(journal, "_TRANSPORT").value_or("") == "kernel";
    if (record.source.empty() && isKernel)
        record.source = "kernel";
    record.log = journalLog(record.source, isKernel || field(journal, "_PID").value_or("") == "1");
    record.type = typeOf(field(journal, "PRIORITY"));
    record.id = idOf(journal);
    record.user = userOf(field(journal, "_UID"));
    record.computer = field(journal, "_HOSTNAME").value_or("");
    record.description = field(journal, "MESSAGE").value_or("");
    return record;
}

}  // namespace

const char* journalLog(std::string_view identifier, bool isSystems) {
    const bool isNamedSo = identifier == "kernel" || identifier == "systemd";
    return isSystems && isNamedSo ? "System" : "Application";
}

std::optional<platform::EventRecord> journalRecord(sd_journal* journal, std::string& reason) {
    try {
        return recordOf(journal);
    } catch (const Unreadable& unreadable) {
        reason = std::strerror(unreadable.error);
        return std::nullopt;
    }
}

std::string journalMoment(std::uint64_t microseconds) {
    return platform::storedForm(
        platform::localTime(std::chrono::system_clock::time_point(std::chrono::microseconds(microseconds))));
}

}  // namespace service
