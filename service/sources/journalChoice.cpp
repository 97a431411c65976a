#include "service/sources/journalChoice.h"

#include <cstdint>
#include <string>

#include "platform/registry/productKey.h"
#include "platform/registry/registry.h"

namespace service {

namespace {

const std::string key = std::string("HKEY_LOCAL_MACHINE\\") + platform::productKey + "\\Sources";

}  // namespace

JournalChoice journalChoice() {
    JournalChoice choice;
    const auto on = platform::registry().value(key, "Journal");
    choice.isOn =
        on == platform::RegistryValue(std::uint32_t{1}) || on == platform::RegistryValue(std::string("1"));
    if (const auto folder = platform::registry().value(key, "JournalFolder"))
        if (const auto* text = std::get_if<std::string>(&*folder))
            choice.folder = *text;
    return choice;
}

void chooseJournal(const JournalChoice& choice) {
    platform::registry().createKey(key);
    platform::registry().setValue(key, "Journal", std::uint32_t{choice.isOn ? 1u : 0u});
    if (!choice.folder.empty())
        platform::registry().setValue(key, "JournalFolder", choice.folder.string());
}

}  // namespace service
