// The words of a notification, with the content as it is stored at this moment.
#pragma once

#include <string>

#include "platform/machine/eventLog.h"
#include "service/decision/monitoring.h"

namespace service {

struct Rendered {
    std::string subject;  // one line
    std::string body;
    long priority = 1;      // 0 low, 1 normal, 2 urgent
    std::string voiceFile;  // its name; empty for none
};

// `closing` is a line that ends the body; empty for none. Variables that are unknown stay as they are.
Rendered render(const MonitoredEvent& event, const platform::EventRecord& record, DeviceKind kind,
                const std::string& closing = {});

// "Error", "Warning" or "Information".
std::string typeName(unsigned type);

}  // namespace service
