// A configuration database of its own for the tests of the stores, and what the log says of a procedure.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/state.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"

namespace databaseTest {

using Lines = std::vector<std::string>;

class Store : public testing::Test {
  protected:
    Store() { host.openConfiguration(); }

    Lines rows(const std::string& statement) { return support::query(host.databaseFile(), statement); }
    std::string value(const std::string& statement) {
        const Lines found = rows(statement);
        return found.size() == 1 ? found[0] : "rows: " + std::to_string(found.size());
    }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }

    // "Level: text" of the lines of one procedure, without those of its entry and exit.
    Lines logOf(const std::string& procedure) {
        constexpr std::size_t levelStart = 1, tagStart = 10, tagWidth = 45, textStart = 57;
        Lines lines;
        const Lines all = host.logLines();
        for (std::size_t i = forgotten_; i < all.size(); ++i) {
            const std::string& line = all[i];
            const std::string tag = line.substr(tagStart, tagWidth);
            if (!tag.ends_with(" [mdlDatabase]" + procedure))
                continue;
            const auto trimmed = [](std::string text) {
                return text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
            };
            const std::string text = trimmed(line.substr(textStart));
            if (!text.starts_with("Entering ") && !text.starts_with("Exiting "))
                lines.push_back(trimmed(line.substr(levelStart, 7)) + ": " + text);
        }
        return lines;
    }
    void forgetLog() { forgotten_ = host.logLines().size(); }

    // One recipient for each name, active, with keys from 1 on.
    void makeRecipients(const std::vector<std::string>& names) {
        for (const std::string& name : names)
            run("INSERT INTO Recipients(RecipientName, RecipientActive) VALUES ('" + name + "', -1)");
    }
    // "key, recipient, type, 'address', active"
    void makeDevice(long key, long recipient, long type, const std::string& address, bool active = true) {
        const std::string k = std::to_string(key);
        run("INSERT INTO Device VALUES (" + k + "," + std::to_string(type) + ",'" + address + "'," +
            (active ? "-1" : "0") + "); INSERT INTO DeviceRecipient VALUES (" + k + "," +
            std::to_string(recipient) + ")");
    }
    void assign(long event, long device, bool active) {
        run("INSERT INTO EventDevice VALUES (" + std::to_string(event) + "," + std::to_string(device) + "," +
            (active ? "-1" : "0") + ")");
    }

    support::TemporaryHost host;
    support::ScriptedPrompts prompts;

  private:
    std::size_t forgotten_ = 0;
};

}  // namespace databaseTest
