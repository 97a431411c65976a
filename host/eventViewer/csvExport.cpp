#include "host/eventViewer/csvExport.h"

#include "host/eventViewer/eventText.h"
#include "platform/files/files.h"

namespace viewer {

namespace {

// Columns of the table, and behind them what stands below it.
std::vector<std::string> fieldsOf(const Entry& entry, std::size_t columns, const Texts& texts) {
    std::vector<std::string> fields;
    for (std::size_t column = 0; column < columns; ++column)
        fields.push_back(columnText(entry, column, texts));
    if (!entry.notification) {
        fields.push_back(entry.record.description);
        return fields;
    }
    fields.push_back(entry.notification->event);
    fields.push_back(entry.notification->subject);
    fields.push_back(entry.notification->body);
    return fields;
}

std::string lineOf(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields)
        line += (line.empty() ? "" : ",") + csvField(field);
    return line + "\r\n";
}

}  // namespace

std::string csvField(const std::string& text) {
    const auto isOneOf = [](char c, std::string_view set) { return set.find(c) != std::string_view::npos; };
    // Where a spreadsheet would begin a cell, some by other separators than ours, no sign may make it a
    // formula.
    std::string safe = !text.empty() && isOneOf(text.front(), "\t\r\n") ? "'" : "";
    bool beginsCell = true;
    for (const char c : text) {
        if (beginsCell && isOneOf(c, "=+-@"))
            safe += '\'';
        safe += c;
        beginsCell = isOneOf(c, ";\t") || (beginsCell && isOneOf(c, " \r\n"));
    }
    if (safe.find_first_of("\",;\t\r\n") == std::string::npos && !safe.empty())
        return safe;
    std::string quoted = "\"";
    for (const char c : safe)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

void writeCsv(const std::filesystem::path& file, const std::vector<EntryPointer>& entries,
              bool ofNotifications, const Texts& texts) {
    std::vector<std::string> headers;
    if (ofNotifications) {
        headers.assign(texts.notificationColumns.begin(), texts.notificationColumns.end());
        headers.insert(headers.end(), {texts.monitoredEvent, texts.subject, texts.message});
    } else {
        headers.assign(texts.columns.begin(), texts.columns.end());
        headers.push_back(texts.message);
    }
    const std::size_t columns = ofNotifications ? texts.notificationColumns.size() : texts.columns.size();
    std::string text = "\xEF\xBB\xBF" + lineOf(headers);
    for (const EntryPointer& entry : entries)
        text += lineOf(fieldsOf(*entry, columns, texts));
    platform::files::writeFile(file, text);
}

}  // namespace viewer
