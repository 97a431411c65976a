// One entry of a log as text: in columns, as details, and in the form that an event is copied in.
#pragma once

#include <QString>
#include <string>

#include "host/eventViewer/logs.h"
#include "host/viewer/texts.h"

namespace viewer {

// Index of a record's type in Texts::types; a type that is none of the system's counts as information.
std::size_t typeIndex(std::uint16_t type);
// The words of a record's columns: type, date, time, source, category, id, user, computer. Date and time are
// in the machine's form.
std::array<std::string, 8> columnTexts(const platform::EventRecord& event, const Texts& texts);
// The words of one column of an entry, as Texts::columns or Texts::notificationColumns names them.
std::string columnText(const Entry& entry, std::size_t column, const Texts& texts);
// Lines of label and value, each ended by carriage return and line feed; the description stands last, on
// lines of its own.
std::string copiedText(const platform::EventRecord& event, const Texts& texts);
std::string copiedText(const service::Notification& notification, const Texts& texts);
std::string copiedText(const Entry& entry, const Texts& texts);
// True when a column, the description or the message contains the text, without regard to case.
bool entryContains(const Entry& entry, const Texts& texts, const QString& text);
// "SMTP address": what a kind of device is called.
std::string deviceName(service::DeviceKind kind, const Texts& texts);

}  // namespace viewer
