#include "platform/registry/registry.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <mutex>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/fileLock.h"
#include "platform/files/files.h"
#include "platform/files/ownedFile.h"
#include "platform/files/textStream.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/host.h"
#include "platform/registry/registryText.h"

namespace platform {

namespace {

// Two processes change the store one after the other: the lock is on a file beside it, because the store
// itself is replaced. The kernel drops it with the process, however that ends.
class StoreLock {
  public:
    StoreLock(const std::filesystem::path& store, std::chrono::milliseconds patience) {
        const std::string name = store.string() + ".lock";
        file_ = files::openOwnedFile(name, O_RDWR);
        if (!file_)
            throw failureFromErrno(errno, store.string());
        if (!files::lockWithin(file_, name, patience))
            throw makeFailure(permissionDenied, store.string() + " is locked");
    }

  private:
    Descriptor file_;
};

std::string stampOf(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return "missing";
        throw failureFromErrno(errno, file.string());
    }
    return std::to_string(status.st_ino) + "/" + std::to_string(status.st_size) + "/" +
           std::to_string(status.st_ctim.tv_sec) + "/" + std::to_string(status.st_ctim.tv_nsec);
}

}  // namespace

bool RegistryNameLess::operator()(std::string_view a, std::string_view b) const noexcept {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(foldAscii(x)) < static_cast<unsigned char>(foldAscii(y));
    });
}

Registry::Registry(std::filesystem::path file, std::chrono::milliseconds patience)
    : file_(std::move(file)), patience_(patience) {}

const RegistryTree& Registry::read() {
    const std::string present = stampOf(file_);
    if (present != stamp_) {
        tree_ = present == "missing" ? RegistryTree{} : parseRegistry(files::readFile(file_), file_.string());
        stamp_ = present;
    }
    return tree_;
}

template <class Change>
bool Registry::change(Change&& apply) {
    const StoreLock lock(file_, patience_);
    // A clock that ticks slowly cannot tell two states of one length apart: what others wrote is read again.
    stamp_.clear();
    RegistryTree changed = read();
    const bool result = apply(changed);
    // Formatting is the comparison: what reads the same needs no write.
    const std::string text = formatRegistry(changed);
    if (text != formatRegistry(tree_)) {
        files::writeFile(file_, text);
        tree_ = std::move(changed);
        stamp_ = stampOf(file_);
    }
    return result;
}

bool Registry::keyExists(std::string_view path) {
    const std::lock_guard lock(mutex_);
    return read().contains(registryPath(path));
}

bool Registry::createKey(std::string_view path) {
    const std::lock_guard lock(mutex_);
    const std::string key = registryPath(path);
    if (key.empty() || !isValidUtf8(key) || key.find_first_of("\r\n") != std::string::npos)
        throw makeFailure(invalidProcedureCall, "a registry key's name is one line of UTF-8 text");
    // Such a line deletes a key in the export format; the store could not be read any more.
    if (key.front() == '-' || isTooDeep(key))
        throw makeFailure(invalidProcedureCall, "a registry key begins with '-' or lies too deep");
    if (read().contains(key))
        return true;
    return change([&](RegistryTree& tree) {
        const bool existed = tree.contains(key);
        addRegistryKey(tree, key);
        return existed;
    });
}

std::optional<RegistryValue> Registry::value(std::string_view path, std::string_view name) {
    const std::lock_guard lock(mutex_);
    const RegistryTree& tree = read();
    const auto key = tree.find(registryPath(path));
    if (key == tree.end())
        return std::nullopt;
    const auto found = key->second.values.find(name);
    return found == key->second.values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> Registry::text(std::string_view path, std::string_view name) {
    const auto stored = value(path, name);
    const auto* text = stored ? std::get_if<std::string>(&*stored) : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

bool Registry::setValue(std::string_view path, std::string_view name, RegistryValue value) {
    const std::lock_guard lock(mutex_);
    const auto* text = std::get_if<std::string>(&value);
    if (!isValidUtf8(name) || (text && !isValidUtf8(*text)))
        throw makeFailure(invalidProcedureCall, "the registry holds UTF-8 text only");
    return change([&](RegistryTree& tree) {
        const auto key = tree.find(registryPath(path));
        if (key == tree.end())
            return false;
        auto& values = key->second.values;
        const auto found = values.find(name);
        if (found == values.end())
            values.emplace(std::string(name), std::move(value));
        else
            found->second = std::move(value);
        return true;
    });
}

bool Registry::deleteValue(std::string_view path, std::string_view name) {
    const std::lock_guard lock(mutex_);
    return change([&](RegistryTree& tree) {
        const auto key = tree.find(registryPath(path));
        if (key == tree.end())
            return false;
        const auto found = key->second.values.find(name);
        if (found == key->second.values.end())
            return false;
        key->second.values.erase(found);
        return true;
    });
}

bool Registry::deleteKey(std::string_view path) {
    const std::lock_guard lock(mutex_);
    const std::string key = registryPath(path);
    return change([&](RegistryTree& tree) {
        if (!tree.contains(key))
            return false;
        const RegistryNameLess less;
        std::erase_if(tree, [&](const auto& entry) {
            const std::string_view candidate = entry.first;
            const bool sameStart = candidate.size() >= key.size() &&
                                   !less(candidate.substr(0, key.size()), key) &&
                                   !less(key, candidate.substr(0, key.size()));
            return sameStart && (candidate.size() == key.size() || candidate[key.size()] == '\\');
        });
        return true;
    });
}

std::vector<std::string> Registry::subkeys(std::string_view path) {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> names;
    const std::string parent = registryPath(path) + "\\";
    const RegistryTree& tree = read();
    const RegistryNameLess less;
    for (auto entry = tree.lower_bound(parent); entry != tree.end(); ++entry) {
        const std::string& candidate = entry->second.path;
        if (candidate.size() <= parent.size() || less(candidate.substr(0, parent.size()), parent) ||
            less(parent, candidate.substr(0, parent.size())))
            break;
        if (candidate.find('\\', parent.size()) == std::string::npos)
            names.push_back(candidate.substr(parent.size()));
    }
    return names;
}

std::optional<RegistryKey> Registry::key(std::string_view path) {
    const std::lock_guard lock(mutex_);
    const RegistryTree& tree = read();
    const auto found = tree.find(registryPath(path));
    return found == tree.end() ? std::nullopt : std::optional(found->second);
}

Registry& registry() {
    static std::mutex mutex;
    static std::unique_ptr<Registry> store;
    static std::filesystem::path storeFile;
    const std::lock_guard lock(mutex);
    if (const auto file = host::registryFile(); !store || file != storeFile) {
        store = std::make_unique<Registry>(file);
        storeFile = file;
    }
    return *store;
}

}  // namespace platform
