#include "database/legacyImport.h"

#include "core/RegistryAPI.h"
#include "core/dictionary.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/events.h"
#include "database/rows.h"
#include "database/settings.h"
#include "platform/prompts.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::BoxButtons;
using platform::BoxIcon;
using platform::Connection;
using platform::Recordset;
using Texts = core::Dictionary<std::string>;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";
constexpr char legacyKey[] = "Software\\Tessaly\\Kesn";

// What the legacy database says of its events, by "Key:" and the legacy key.
struct LegacyEvents {
    Texts sources;
    Texts ids;
};

void tell(const std::string& text, const std::string& title, BoxIcon icon) {
    platform::prompts().messageBox({text, title, icon, BoxButtons::ok});
}

// Opens the legacy database. False, and the administrator knows, when that fails.
bool openLegacy(Frame& frame, Connection& connection, const std::string& file) {
    const std::string connectionString = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file;
    frame.step([&] { connection.open(connectionString); });
    if (connection.errors().empty())
        return true;
    tell(myLoadResString(1164) + file + myLoadResString(1165) + connectionString + "\n" +
             myLoadResString(1166),
         myLoadResString(1167), BoxIcon::information);
    return false;
}

// An event has one source and one id. A second one, or a row without a value, makes the whole database
// doubtful, so it ends the reading.
void readRow(const Recordset& row, LegacyEvents& events) {
    const std::string key = "Key:" + row.text("Key");
    Texts& texts = row.text("PropName") == "EventId" ? events.ids : events.sources;
    if (texts.contains(key))
        throw platform::makeFailure(platform::keyAlreadyExists, key);
    texts.set(key, row.text("PropVal"));
}

// False when nothing may be imported.
bool readLegacy(Frame& frame, Connection& connection, LegacyEvents& events) {
    Rows rows(frame, connection);
    rows.openForReading(
        "SELECT PropName, PropVal, Key FROM Properties WHERE PropName = 'Source' OR PropName = 'EventId' "
        "ORDER BY Key");
    if (rows.count() < 1) {
        tell(myLoadResString(1162), myLoadResString(1163), BoxIcon::none);
        return false;
    }
    while (rows.next()) {
        if (!frame.step([&] { readRow(rows.recordset(), events); }))
            return false;
    }
    return true;
}

NewEvent importedEvent(const std::string& source, const std::string& id) {
    NewEvent event;
    event.eventSource = source;
    event.eventId = id;
    event.eventTitle = myLoadResString(1178);
    return event;
}

void tellInvalidSource(const std::string& source, const std::string& id) {
    // The title has no entry in the string table; it is the same in every language.
    tell(myLoadResString(1179) + source + myLoadResString(1180) + "\n" + myLoadResString(1181) + source +
             " " + id,
         "Invalid Source", BoxIcon::information);
}

}  // namespace

void importLegacyEvents(const std::function<bool(std::string_view)>& isValidEventSource) {
    core::procedure(module, "importLegacyEvents", [&](Frame& frame) {
        std::string dataPath;
        frame.step([&] {
            dataPath = RegistryAPI::getRegistryString(RegistryAPI::HKEY_LOCAL_MACHINE, legacyKey, "DataPath");
        });
        if (dataPath.empty())
            return;
        Connection connection;
        LegacyEvents events;
        if (!openLegacy(frame, connection, dataPath + "/KESN.MDB") || !readLegacy(frame, connection, events))
            return;
        for (const std::string& key : events.sources.keys()) {
            const std::string& source = events.sources.item(key);
            // An event without an id is not written; its failure is in the log.
            const std::string id = events.ids.contains(key) ? events.ids.item(key) : std::string();
            NewEvent event = importedEvent(source, id);
            const DefaultContent mail = getDefaultContent(emailContent);
            event.content.contentSubject = mail.subject;
            event.content.contentNote = mail.body;
            frame.step([&] {
                if (!isValidEventSource(source)) {
                    tellInvalidSource(source, id);
                    return;
                }
                event.content.contentAttachment = getDefaultContent(voiceContent).voiceFile;
                addNewEvent(event);
            });
        }
    });
}

}  // namespace mdlDatabase
