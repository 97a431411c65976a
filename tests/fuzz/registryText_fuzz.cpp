// The registry's text form: whatever can be read is written so that it reads the same.

#include "fuzz.h"
#include "platform/failure.h"
#include "platform/registry/registry.h"

namespace {

bool same(const platform::RegistryKey& a, const platform::RegistryKey& b) {
    return a.path == b.path && a.values.size() == b.values.size() &&
           // Spelling counts here, so the maps' own order does not do.
           std::equal(a.values.begin(), a.values.end(), b.values.begin(), [](const auto& x, const auto& y) {
               return x.first == y.first && x.second == y.second;
           });
}

bool same(const platform::RegistryTree& a, const platform::RegistryTree& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) {
               return x.first == y.first && same(x.second, y.second);
           });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    platform::RegistryTree tree;
    try {
        tree = platform::parseRegistry(fuzz::textOf(data, size), "input");
    } catch (const platform::Failure& failure) {
        fuzz::insist(failure.number() == platform::pathFileAccessError, "a refusal has the number 75");
        return 0;
    }
    const std::string text = platform::formatRegistry(tree);
    const platform::RegistryTree again = platform::parseRegistry(text, "written");
    fuzz::insist(same(tree, again), "a written registry reads the same");
    fuzz::insist(platform::formatRegistry(again) == text, "and is written the same");
    return 0;
}
