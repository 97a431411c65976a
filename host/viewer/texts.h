// Words of the host's viewers in the languages that the machine may speak.
#pragma once

#include <array>
#include <string>

#include "ui/widgets/findTexts.h"

namespace viewer {

using ui::Language;

struct Texts {
    // Labels of a copied event, in the order of its lines; each with its colon and tabs.
    std::array<const char*, 9> copiedLabels;
    // By type: error, warning, information, success audit, failure audit.
    std::array<const char*, 5> types;
    const char* noCategory;
    const char* noUser;

    const char* eventViewer;
    const char* log;
    std::array<const char*, 2> logs;  // Application, System
    const char* show;
    const char* allTypes;
    std::array<const char*, 8> columns;  // type, date, time, source, category, id, user, computer
    const char* refresh;
    const char* copy;
    const char* copied;
    const char* count;               // %1 of %2
    const char* countNotifications;  // %1 of %2
    const char* details;
    const char* cannotRead;  // %1

    // What is told and what waits.
    const char* notifications;                        // the log's name
    const char* journal;                              // of the machine
    std::array<const char*, 5> fates;                 // as service::Fate
    std::array<const char*, 10> notificationColumns;  // outcome, date, time, source, id, recipient, device,
                                                      // answer, attempts, address
    std::array<const char*, 7> devices;               // by kind
    const char* monitoredEvent;
    const char* subject;
    const char* message;
    const char* nextAttempt;  // %1
    const char* source;
    const char* allSources;
    const char* outcome;
    const char* allOutcomes;
    const char* followNews;
    const char* exportShown;
    const char* exportTitle;
    const char* exported;  // %1 rows, %2 the file
    const char* exportEnded;
    const char* cannotExport;  // %1
    const char* readingAll;
    const char* sendAgain;
    const char* sentAgain;
    const char* waitsAlready;
    const char* messageGone;
    const char* wasTold;
    const char* cannotSendAgain;  // %1

    // Who is told of a record.
    const char* whoIsTold;
    const char* asIfNow;
    std::array<const char*, 10> reasons;  // as service::Reason
    const char* heldBackUntil;            // %1
    const char* noEvent;
    const char* noDevice;
    const char* cannotDecide;               // %1
    std::array<const char*, 4> whoColumns;  // recipient, verdict, device, address

    // How often in the last days.
    const char* lastDays;
    const char* monitoredEvents;
    const char* countRecords;
    const char* cancel;
    const char* counting;  // %1 records
    const char* cancelled;
    std::array<const char*, 3> daysColumns;  // day, records, notifications
    const char* daysResult;                  // %1 records, %2 notifications, %3 minutes
    const char* noMonitoredEvents;

    ui::FindTexts findBar;

    const char* textViewer;
    const char* follow;
    const char* cannotOpen;  // %1 the file, %2 why
    const char* noFile;
    const char* beginningLeftOut;  // %1 bytes
};

const Texts& texts(Language language);
// The language of this machine's user; English when it is none of these.
Language userLanguage();

}  // namespace viewer
