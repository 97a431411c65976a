// The machine's registry: one UTF-8 text file per host in the widely known export format. Key and value
// names are case-insensitive and keep their spelling. Reading reparses only when the file changed; writing
// is lock, re-read, change, write to a temporary file, fsync, rename. A file that cannot be parsed is
// never overwritten: the failure (number 75) names the file and the line.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform {

// A value is a text (type 1), bytes (type 3) or a double word (type 4); the alternatives stand in that order.
using RegistryValue = std::variant<std::string, std::vector<std::uint8_t>, std::uint32_t>;

// Case-insensitive order of names (ASCII letters).
struct RegistryNameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept;
};

struct RegistryKey {
    std::string path;  // full path as spelled, such as HKEY_LOCAL_MACHINE\SOFTWARE\Tessaly
    std::map<std::string, RegistryValue, RegistryNameLess> values;
};

// All keys by full path. A key's parents are keys too.
using RegistryTree = std::map<std::string, RegistryKey, RegistryNameLess>;

// Parses a store's text. Raises number 75 with "name:line: reason" for anything malformed; `name` is only
// used in that text.
RegistryTree parseRegistry(std::string_view text, std::string_view name);
// The text of a store; parseRegistry of it gives the same tree.
std::string formatRegistry(const RegistryTree& tree);

// Used by several threads. Paths are full paths without regard to case; a trailing or doubled separator '\'
// is ignored.
class Registry {
  public:
    // A change fails with 70 when another process holds the file for longer than `patience`.
    explicit Registry(std::filesystem::path file,
                      std::chrono::milliseconds patience = std::chrono::seconds(5));

    bool keyExists(std::string_view path);
    // Creates the key and its parents; true when it existed already.
    bool createKey(std::string_view path);
    // Nothing when key or value is missing. An empty name is the key's default value.
    std::optional<RegistryValue> value(std::string_view path, std::string_view name);
    // The value's text; nothing also when the value is no text.
    std::optional<std::string> text(std::string_view path, std::string_view name);
    // Returns false, changing nothing, when the key does not exist.
    bool setValue(std::string_view path, std::string_view name, RegistryValue value);
    // False when there was nothing to delete. deleteKey takes all subkeys along.
    bool deleteValue(std::string_view path, std::string_view name);
    bool deleteKey(std::string_view path);
    // Names of the direct subkeys, in the order of their names; empty when the key is missing.
    std::vector<std::string> subkeys(std::string_view path);
    // The key with its values, or nothing.
    std::optional<RegistryKey> key(std::string_view path);

  private:
    const RegistryTree& read();
    template <class Change>
    bool change(Change&& apply);

    std::mutex mutex_;
    std::filesystem::path file_;
    std::chrono::milliseconds patience_;
    RegistryTree tree_;
    std::string stamp_;  // identity, size and time of the file that tree_ was read from
};

// The store of the present host.
Registry& registry();

}  // namespace platform
