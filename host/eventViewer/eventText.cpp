#include "host/eventViewer/eventText.h"

#include <algorithm>

#include "platform/machine/clock.h"
#include "ui/base/text.h"

namespace viewer {

namespace {

enum Column {
    typeColumn,
    dateColumn,
    timeColumn,
    sourceColumn,
    categoryColumn,
    idColumn,
    userColumn,
    computerColumn
};

// A line feed that stands alone gets its carriage return.
std::string withLineEnds(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r'))
            result += '\r';
        result += text[i];
    }
    return result;
}

// Moment in stored form to the machine's date and time; what is no moment stands in the date's place.
std::pair<std::string, std::string> dateAndTime(const std::string& stored) {
    platform::LocalTime moment{};
    if (!platform::parseMoment(stored, moment))
        return {stored, {}};
    return {platform::shortDate(moment), platform::longTime(moment)};
}

std::string withNextAttempt(const service::Notification& notification, const Texts& texts) {
    if (!notification.nextAttempt)
        return notification.words;
    const std::string next =
        QString(texts.nextAttempt)
            .arg(ui::fromUtf8(platform::defaultForm(platform::localTime(*notification.nextAttempt))))
            .toStdString();
    return notification.words.empty() ? next : notification.words + "; " + next;
}

std::string notificationText(const service::Notification& notification, std::size_t column,
                             const Texts& texts) {
    switch (column) {
        case 0:
            return texts.fates[static_cast<std::size_t>(notification.fate)];
        case 1:
            return dateAndTime(notification.time).first;
        case 2:
            return dateAndTime(notification.time).second;
        case 3:
            return notification.source;
        case 4:
            return std::to_string(notification.id);
        case 5:
            return notification.recipient;
        case 6:
            return notification.kind ? deviceName(*notification.kind, texts) : std::string();
        case 7:
            return withNextAttempt(notification, texts);
        case 8:
            return notification.attempts ? std::to_string(*notification.attempts) : std::string();
        default:
            return notification.address;
    }
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Looks for one text in many fields. A plain text is looked for byte by byte, without another copy of the
// field: a log has many fields.
class Search {
  public:
    explicit Search(const QString& text)
        : text_(text),
          plain_(text.toStdString()),
          isPlain_(std::ranges::all_of(plain_, [](char c) { return static_cast<unsigned char>(c) < 128; })),
          hasDigit_(std::ranges::any_of(plain_, [](char c) { return c >= '0' && c <= '9'; })) {}

    bool in(const std::string& field) const {
        if (!isPlain_)
            return ui::fromUtf8(field).contains(text_, Qt::CaseInsensitive);
        return !std::ranges::search(field, plain_, {}, lower, lower).empty() || plain_.empty();
    }
    // Moments, ids and attempts have words of their own only for the half of the day.
    bool mayBeInNumber() const { return hasDigit_ || plain_.size() < 3; }

  private:
    QString text_;
    std::string plain_;
    bool isPlain_;
    bool hasDigit_;
};

}  // namespace

std::size_t typeIndex(std::uint16_t type) {
    switch (type) {
        case 1:
            return 0;
        case 2:
            return 1;
        case 8:
            return 3;
        case 16:
            return 4;
        default:
            return 2;
    }
}

std::array<std::string, 8> columnTexts(const platform::EventRecord& event, const Texts& texts) {
    const auto [date, time] = dateAndTime(event.time);
    return {texts.types[typeIndex(event.type)],
            date,
            time,
            event.source,
            event.category == 0 ? texts.noCategory : "(" + std::to_string(event.category) + ")",
            std::to_string(event.id),
            event.user.empty() ? texts.noUser : event.user,
            event.computer};
}

std::string copiedText(const platform::EventRecord& event, const Texts& texts) {
    const auto columns = columnTexts(event, texts);
    constexpr std::array<Column, 8> order{typeColumn, sourceColumn, categoryColumn, idColumn,
                                          dateColumn, timeColumn,   userColumn,     computerColumn};
    std::string text;
    for (std::size_t line = 0; line < order.size(); ++line)
        text += texts.copiedLabels[line] + columns[order[line]] + "\r\n";
    return text + texts.copiedLabels.back() + "\r\n" + withLineEnds(event.description) + "\r\n";
}

std::string deviceName(service::DeviceKind kind, const Texts& texts) {
    const auto index = static_cast<std::size_t>(kind) - 1;
    return index < texts.devices.size() ? texts.devices[index] : std::to_string(static_cast<long>(kind));
}

std::string columnText(const Entry& entry, std::size_t column, const Texts& texts) {
    if (entry.notification)
        return notificationText(*entry.notification, column, texts);
    const platform::EventRecord& record = entry.record;
    switch (column) {
        case typeColumn:
            return texts.types[typeIndex(record.type)];
        case sourceColumn:
            return record.source;
        case idColumn:
            return std::to_string(record.id);
        case computerColumn:
            return record.computer;
        default:
            return columnTexts(record, texts)[column];
    }
}

std::string copiedText(const service::Notification& notification, const Texts& texts) {
    std::string text;
    for (std::size_t column = 0; column < texts.notificationColumns.size(); ++column)
        text += std::string(texts.notificationColumns[column]) + ":\t" +
                notificationText(notification, column, texts) + "\r\n";
    text += std::string(texts.monitoredEvent) + ":\t" + notification.event + "\r\n";
    if (!notification.subject.empty() || !notification.body.empty())
        text += "\r\n" + notification.subject + "\r\n" + withLineEnds(notification.body) + "\r\n";
    return text;
}

std::string copiedText(const Entry& entry, const Texts& texts) {
    return entry.notification ? copiedText(*entry.notification, texts) : copiedText(entry.record, texts);
}

bool entryContains(const Entry& entry, const Texts& texts, const QString& text) {
    const Search search(text);
    const auto holds = [&](std::size_t column) { return search.in(columnText(entry, column, texts)); };
    if (!entry.notification) {
        const platform::EventRecord& record = entry.record;
        return search.in(record.source) || search.in(record.description) || search.in(record.computer) ||
               search.in(record.user) || holds(typeColumn) || (record.user.empty() && holds(userColumn)) ||
               holds(categoryColumn) ||
               (search.mayBeInNumber() && (holds(idColumn) || holds(dateColumn) || holds(timeColumn)));
    }
    const service::Notification& notification = *entry.notification;
    if (search.in(notification.address) || search.in(notification.source) || search.in(notification.words) ||
        search.in(notification.recipient) || search.in(notification.event) ||
        search.in(notification.subject) || search.in(notification.body))
        return true;
    for (std::size_t column = 0; column < texts.notificationColumns.size(); ++column)
        if (holds(column))
            return true;
    return false;
}

}  // namespace viewer
