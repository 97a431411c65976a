// A record of an event that somebody is to be told of, and what he gets.

#include <chrono>
#include <filesystem>

#include "core/state.h"
#include "host/textViewer/textWindow.h"
#include "platform/ado/ado.h"
#include "platform/files/files.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "tour/chapters.h"
#include "tour/hands.h"
#include "tour/stage.h"

namespace tour {

namespace {

constexpr char address[] = "night.desk@example.net";

std::vector<std::filesystem::path> mailsOf(const char* to) {
    std::vector<std::filesystem::path> mails;
    const std::filesystem::path box = platform::host::folder() / "mail" / to / "new";
    if (std::filesystem::exists(box))
        for (const auto& file : platform::files::listFiles(box))
            mails.push_back(box / file.name);
    return mails;
}

bool isTold(const std::filesystem::path& mail) {
    return platform::files::readFile(mail).find("MeridaneCorvane_MessageStore") != std::string::npos;
}

}  // namespace

void playNotification(const Play& play) {
    const auto begin = std::chrono::steady_clock::now();
    platform::appendEvent({"Application", "", "MeridaneCorvane_MessageStore", 4711, 1, 0, "", "CORVANE01",
                           "The store of server 2 is away."});
    std::filesystem::path mail;
    waitFor(
        [&] {
        for (const std::filesystem::path& each : mailsOf(address))
            if (isTold(each))
                mail = each;
        return !mail.empty();
        },
        "no mail lies in the mailbox");
    insist(std::chrono::steady_clock::now() - begin < std::chrono::seconds(2), "the mail took its time");
    viewer::TextWindow window(mail.string(), viewer::userLanguage());
    window.resize(720, 520);
    window.show();
    takePicture("mail");
    window.close();

    // The list shows when the event was told of last.
    const auto hasHistory = [] {
        platform::Recordset rows;
        rows.open("SELECT Count(*) AS Told FROM NotificationLog WHERE EventID = 4711", core::gDatabase);
        return rows.number("Told") > 0;
    };
    waitFor(hasHistory, "the history has no line of it");
    clickNode(play.tree(), "keyRecipients");
    clickNode(play.tree(), "keyMonitoredEvents");
    auto& grid = control<ui::KeyedGrid>(play.window, "vsflexgridMonitoredEvents");
    const int row = rowOf(grid, "EventId", "4711");
    insist(row > 0 && !grid.cellText(row, "EventLastNotification").empty(), "the list does not tell of it");
    takePicture("last-notification");
}

}  // namespace tour
