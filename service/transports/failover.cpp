#include "service/transports/failover.h"

#include <exception>
#include <string>

#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"

namespace service {

namespace {

constexpr char managerKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0";

// A stop of the service waits for this, so it is short: the request is made again later.
constexpr std::chrono::milliseconds patience(700);

void tellSystemLog(const Message& message) {
    constexpr std::uint16_t warning = 2;
    platform::EventRecord record;
    record.log = "System";
    record.source = "QuillonService";
    record.id = 7;
    record.type = warning;
    record.description = "A failover was forced: " + message.subject;
    platform::appendEvent(record, patience);
}

}  // namespace

Outcome Failover::send(const Message& message, const Deadline&) {
    try {
        // An object of this thread: the program's shared one belongs to another.
        platform::Registry registry(platform::host::registryFile(), patience);
        if (!registry.setValue(managerKey, "ForcedFailover", std::uint32_t{1}))
            return {Result::refused, "This host has no node manager"};
        // The request is made: a log that cannot be written must not make it once more.
        std::string answer = "Handed over to the node manager";
        try {
            tellSystemLog(message);
        } catch (const std::exception& failure) {
            answer += std::string("; the System log does not tell of it: ") + failure.what();
        }
        return {Result::handedOver, answer};
    } catch (const std::exception& failure) {
        return {Result::tryAgain, failure.what()};
    }
}

}  // namespace service
