#include "server/eventSources.h"

#include <algorithm>
#include <unordered_set>

#include "core/RegistryAPI.h"
#include "core/procedure.h"
#include "core/state.h"
#include "platform/ado/ado.h"
#include "platform/machine/caseFold.h"

namespace mdlUtility {

namespace {

constexpr char moduleName[] = "mdlUtility";
constexpr char eventLogKey[] = "System\\CurrentControlSet\\Services\\EventLog\\";
constexpr std::string_view corvanePrefix = "meridanecorvane_";

// Collects names in the order found; a name that is there already is a failure of the step that adds it.
class SourceNames {
  public:
    explicit SourceNames(std::vector<std::string>& names) : names_(names) {}

    void add(std::string name) {
        if (!known_.insert(name).second)
            throw platform::makeFailure(platform::keyAlreadyExists);
        names_.push_back(std::move(name));
    }

  private:
    std::vector<std::string>& names_;
    std::unordered_set<std::string> known_;
};

void addFromTable(core::Frame& frame, SourceNames& sources, bool lowerCase) {
    platform::Recordset rows;
    bool atEnd = true;
    frame.step([&] {
        rows.open("SELECT * FROM 31Sources ORDER BY EventSource", core::gDatabase,
                  platform::CursorType::forwardOnly, platform::LockType::readOnly,
                  platform::CursorLocation::client);
        atEnd = rows.EOF_();
    });
    while (!atEnd) {
        frame.step([&] {
            const std::string name = rows.text("EventSource");
            sources.add(lowerCase ? platform::foldCase(name) : name);
        });
        frame.step([&] {
            rows.moveNext();
            atEnd = rows.EOF_();
        });
    }
}

void addFromRegistry(core::Frame& frame, SourceNames& sources, const std::string& path, bool corvaneOnly,
                     bool lowerCase) {
    std::vector<std::string> names;
    frame.step([&] { names = RegistryAPI::enumRegistryKeys(RegistryAPI::HKEY_LOCAL_MACHINE, path); });
    for (const std::string& name : names) {
        bool listed = false;
        frame.step([&] { listed = hasMessageFile(std::string(path).append("\\").append(name)); });
        if (!listed || (corvaneOnly && platform::foldCase(name).find(corvanePrefix) == std::string::npos))
            continue;
        frame.step([&] { sources.add(lowerCase ? platform::foldCase(name) : name); });
    }
}

}  // namespace

std::vector<std::string> getEventSources(bool useRegistry, bool corvaneOnly, bool lowerCase) {
    return core::procedure(moduleName, "getEventSources", std::vector<std::string>{},
                           [&](core::Frame& frame, std::vector<std::string>& result) {
        SourceNames sources(result);
        if (!useRegistry) {
            addFromTable(frame, sources, lowerCase);
            return;
        }
        for (const char* log : {"Application", "System"})
            addFromRegistry(frame, sources, std::string(eventLogKey) + log, corvaneOnly, lowerCase);
    });
}

bool hasMessageFile(std::string_view keyPath) {
    const auto root = RegistryAPI::HKEY_LOCAL_MACHINE;
    return !RegistryAPI::getRegistryString(root, keyPath, "EventMessageFile").empty() ||
           !RegistryAPI::getRegistryString(root, keyPath, "CategoryMessageFile").empty();
}

bool isValidEventSource(std::string_view name) {
    return core::procedure(moduleName, "isValidEventSource", false, [&](core::Frame& frame, bool& result) {
        frame.step([&] {
            const auto sources = getEventSources(core::gCorvaneFourOrLater, false, true);
            result = std::ranges::find(sources, platform::foldCase(name)) != sources.end();
        });
    });
}

}  // namespace mdlUtility
