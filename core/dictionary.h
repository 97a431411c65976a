// Entries by key that keep the order of their adding. Keys are compared exactly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/failure.h"

namespace core {

template <class Item>
class Dictionary {
  public:
    bool contains(std::string_view key) const { return places_.find(key) != places_.end(); }
    std::size_t size() const noexcept { return places_.size(); }
    bool empty() const noexcept { return places_.empty(); }

    // Adds an entry at the end, or gives the one of that key another item.
    void set(std::string_view key, Item item) {
        const auto [place, added] = places_.try_emplace(std::string(key), next_);
        if (added)
            ++next_;
        entries_[place->second] = {place->first, std::move(item)};
    }

    // The entry's item. Raises 5 for a key that is not there.
    const Item& item(std::string_view key) const {
        const auto place = places_.find(key);
        if (place == places_.end())
            throw platform::makeFailure(platform::invalidProcedureCall, key);
        return entries_.at(place->second).second;
    }

    // True when there was such an entry.
    bool remove(std::string_view key) {
        const auto place = places_.find(key);
        if (place == places_.end())
            return false;
        entries_.erase(place->second);
        places_.erase(place);
        return true;
    }

    void clear() noexcept {
        places_.clear();
        entries_.clear();
    }

    // In the order of their adding; a copy, so that a loop may change the dictionary.
    std::vector<std::string> keys() const {
        std::vector<std::string> result;
        result.reserve(entries_.size());
        for (const auto& [place, entry] : entries_)
            result.push_back(entry.first);
        return result;
    }

  private:
    std::map<std::string, std::uint64_t, std::less<>> places_;
    std::map<std::uint64_t, std::pair<std::string, Item>> entries_;
    std::uint64_t next_ = 0;
};

}  // namespace core
