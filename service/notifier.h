// The service's work: from the records of the event logs to the history of who was told of them. Records walk
// through it in one direction; what has to survive lies in the outbox.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files/descriptor.h"
#include "service/decision/configuration.h"
#include "service/decision/decide.h"
#include "service/delivery.h"
#include "service/outbox/outbox.h"
#include "service/program/serviceLog.h"
#include "service/program/work.h"
#include "service/sources/folderWatch.h"
#include "service/sources/source.h"

namespace service {

struct NotifierOptions {
    std::filesystem::path databaseFile;  // the configuration
    std::filesystem::path outboxFile;
    std::chrono::milliseconds pause{0};     // between two looks; 0 leaves it to the setting "PollingInterval"
    std::chrono::minutes oldestNotice{60};  // older records are told together, one message for each event
    std::function<bool(DeviceKind)> isSetUp;
    // Looks whether the ways out have changed: true when transports have to be made anew.
    std::function<bool()> refreshWaysOut = [] { return false; };
    DeliveryOptions delivery;
};

class Notifier : public Work {
  public:
    // Raises platform::Failure when the machine has no descriptor or thread left.
    Notifier(NotifierOptions options, std::vector<std::unique_ptr<Source>> sources);

    void begin() override;
    std::chrono::milliseconds look() override;
    void end() override;
    int descriptor() const noexcept override { return wake_.get(); }

  private:
    // Its failures go into the log, each once as long as it lasts.
    template <class Step>
    void attempt(const std::string& what, Step&& step);
    void openOutbox();
    bool takeIn(Source& source);
    void deal(Outbox::Batch& batch, const platform::EventRecord& record, const Monitoring& monitoring);
    void tell(Outbox::Batch& batch, const EventVerdict& verdict, const platform::EventRecord& record);
    void holdBack(Outbox::Batch& batch, const EventVerdict& verdict, const platform::EventRecord& record,
                  const char* why);
    EventVerdict verdictOf(const HeldBack& held, const Monitoring& monitoring);
    void tellHeldBack();
    void age();
    void watchSources();
    void flushLog();
    Circumstances circumstances();
    std::chrono::milliseconds untilNextLook();

    NotifierOptions options_;
    ServiceLog log_;
    Delivery delivery_;
    std::vector<std::unique_ptr<Source>> sources_;
    std::map<std::string, std::vector<std::string>> toldNotices_;  // of records that are not taken in yet
    std::map<std::string, std::string> beginnings_;  // of the sources, should an outbox have to be made
    Configuration configuration_;
    platform::Descriptor outboxLock_;
    std::unique_ptr<Outbox> outbox_;
    FolderWatch logsWatch_;
    platform::Descriptor wake_;
    std::string logFile_;
    std::chrono::seconds pollingInterval_{10};
    std::optional<bool> everything_;               // as it was when the database was first read
    std::map<std::string, std::string> troubles_;  // what fails at present, by what it keeps from happening
    std::optional<Moment> heldUntil_;              // when the next held-back records may be told
    Moment lastAging_;
    Moment lookedAt_;            // the beginning of the last look
    bool knowsWaysOut_ = false;  // they have been read since the start
};

}  // namespace service
