#include "database/settings.h"

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/rows.h"

using core::Frame;
using modLocalize::myLoadResString;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";
constexpr char defaultVoiceFile[] = "QLN_Default_ENU.wav";  // a literal in every language

std::string defaultSubject() {
    return myLoadResString(1209) + "<Type>" + myLoadResString(1210) + "<Source>[<Event>] " +
           myLoadResString(1242) + " <Computer>";
}

std::string defaultBody() {
    static constexpr std::pair<long, const char*> lines[] = {
        {1211, "<Type>"}, {1212, "<Source>"}, {1213, "<Category>"}, {1214, "<Event>"},
        {1215, "<Date>"}, {1216, "<Time>"},   {1217, "<User>"},     {1218, "<Computer>"},
    };
    std::string body;
    for (const auto& [label, variable] : lines)
        body += myLoadResString(label) + variable + "\r\n";
    return body + myLoadResString(1219) + "\r\n<Description>\r\n" + myLoadResString(1220) + "<Notes>";
}

std::string settingQuery(std::string_view columns, std::string_view settingName) {
    return "SELECT " + std::string(columns) + " FROM Configuration WHERE Setting = '" +
           std::string(settingName) + "'";
}

}  // namespace

long getLastKey(std::string_view tableName, std::string_view keyField) {
    return core::procedure(module, "getLastKey", 0L, [&](Frame& frame, long& key) {
        Rows row(frame);
        row.openForReading("SELECT Max(" + std::string(keyField) + ") AS MaxKey FROM " +
                           std::string(tableName));
        key = row.number("MaxKey");
        row.close();
    });
}

std::optional<std::string> readConfigurationSetting(std::string_view settingName) {
    return core::procedure(module, "getConfigurationSetting", std::optional<std::string>(),
                           [&](Frame& frame, std::optional<std::string>& value) {
        Rows row(frame);
        if (!row.openForReading(settingQuery("Value", settingName)))
            return;
        value = row.hasRow() ? row.text("Value") : std::string();
        row.close();
    });
}

std::string getConfigurationSetting(std::string_view settingName) {
    return readConfigurationSetting(settingName).value_or(std::string());
}

void setConfigurationSetting(std::string_view settingName, std::string_view value) {
    core::procedure(module, "setConfigurationSetting", [&](Frame& frame) {
        Rows row(frame);
        row.openForWriting(settingQuery("*", settingName));
        if (row.atEnd()) {
            row.addNew();
            row.set("Setting", std::string(settingName));
        }
        row.set("Value", std::string(value));
        row.update();
        row.close();
    });
}

DefaultContent getDefaultContent(long contentType) {
    return core::procedure(module, "getDefaultContent", DefaultContent(),
                           [&](Frame&, DefaultContent& content) {
        const auto orDefault = [](const std::string& setting, auto makeDefault) {
            return setting.empty() ? std::string(makeDefault()) : setting;
        };
        if (contentType == voiceContent) {
            content.voiceFile =
                orDefault(getConfigurationSetting("DefaultWavAttachment"), [] { return defaultVoiceFile; });
        } else if (contentType == emailContent) {
            content.subject = orDefault(getConfigurationSetting("DefaultEmailSubject"), defaultSubject);
            content.body = orDefault(getConfigurationSetting("DefaultEmailBody"), defaultBody);
        }
    });
}

long mapPriority(long value) {
    // Required: index 2 and value 2 both land on 0.
    return value == 0 ? 2 : value == 1 ? 1 : 0;
}

void makeInitialDatabaseChanges() {
    core::procedure(module, "makeInitialDatabaseChanges", [&](Frame& frame) {
        const auto fill = [&](const char* setting, auto makeDefault) {
            frame.step([&] {
                // One that could not be read is not taken for an empty one.
                if (readConfigurationSetting(setting) == "")
                    setConfigurationSetting(setting, makeDefault());
            });
        };
        const auto normalPriority = [] { return std::to_string(mapPriority(1)); };
        fill("DefaultWavAttachment", [] { return getDefaultContent(voiceContent).voiceFile; });
        fill("DefaultEmailSubject", [] { return getDefaultContent(emailContent).subject; });
        fill("DefaultEmailBody", [] { return getDefaultContent(emailContent).body; });
        fill("DefaultEmailPriority", normalPriority);
        fill("DefaultVoiceMailPriority", normalPriority);
    });
}

}  // namespace mdlDatabase
