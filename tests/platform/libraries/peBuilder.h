// Assembles PE files with resources in memory, so that tests can damage them anywhere.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string_view>
#include <vector>

namespace peBuilder {

class Bytes : public std::vector<std::uint8_t> {
  public:
    void put(std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i)
            push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    void patch(std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            (*this)[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    void put(std::u16string_view text) {
        for (const char16_t unit : text)
            put(unit, 2);
    }
    void append(const std::vector<std::uint8_t>& other) { insert(end(), other.begin(), other.end()); }
    void pad(std::size_t alignment) { resize((size() + alignment - 1) / alignment * alignment); }
};

// Resources by type and number.
using Resources = std::map<std::uint32_t, std::map<std::uint32_t, Bytes>>;

constexpr std::uint32_t sectionAddress = 0x1000;
constexpr std::size_t sectionOffset = 0x200;

inline void putDirectory(Bytes& tree, std::size_t entries) {
    tree.put(0, 8);
    tree.put(0, 6);
    tree.put(entries, 2);
}

inline Bytes resourceTree(const Resources& resources) {
    Bytes tree;
    putDirectory(tree, resources.size());
    const std::size_t types = tree.size();
    tree.resize(types + resources.size() * 8);
    std::size_t typeEntry = types;
    for (const auto& [type, items] : resources) {
        tree.patch(typeEntry, type);
        tree.patch(typeEntry + 4, 0x80000000u | static_cast<std::uint32_t>(tree.size()));
        typeEntry += 8;
        putDirectory(tree, items.size());
        std::size_t itemEntry = tree.size();
        tree.resize(itemEntry + items.size() * 8);
        for (const auto& [id, data] : items) {
            tree.patch(itemEntry, id);
            tree.patch(itemEntry + 4, 0x80000000u | static_cast<std::uint32_t>(tree.size()));
            itemEntry += 8;
            putDirectory(tree, 1);
            tree.put(0x409, 4);
            tree.put(tree.size() + 4, 4);
            tree.put(sectionAddress + tree.size() + 16, 4);
            tree.put(data.size(), 4);
            tree.put(0, 8);
            tree.append(data);
            tree.pad(4);
        }
    }
    return tree;
}

// `magic` is 0x10B for a 32-bit file, 0x20B for a 64-bit one.
inline Bytes peFile(const Resources& resources, std::uint16_t magic = 0x20B) {
    const std::size_t optionalSize = magic == 0x10B ? 224 : 240;
    const Bytes tree = resourceTree(resources);
    Bytes file;
    file.put(0x5A4D, 2);
    file.resize(0x40);
    file.patch(0x3C, 0x40);
    file.put(0x4550, 4);
    file.put(0x8664, 2);
    file.put(1, 2);
    file.resize(file.size() + 12);
    file.put(optionalSize, 2);
    file.put(0x2000, 2);
    const std::size_t optional = file.size();
    file.put(magic, 2);
    file.resize(optional + optionalSize);
    const std::size_t directories = optional + (magic == 0x10B ? 96 : 112);
    file.patch(directories - 4, 16);
    file.patch(directories + 16, sectionAddress);
    file.resize(file.size() + 8);
    file.put(tree.size(), 4);
    file.put(sectionAddress, 4);
    file.put(tree.size(), 4);
    file.put(sectionOffset, 4);
    file.resize(sectionOffset);
    file.append(tree);
    return file;
}

// Calls `check` with every shorter beginning of the bytes, then with 2,000 copies with random damage.
template <class Check>
void forDamaged(const Bytes& whole, Check&& check) {
    for (std::size_t size = 0; size < whole.size(); ++size)
        check(std::vector<std::uint8_t>(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::uint8_t> copy = whole;
        for (int flips = 1 + round % 4; flips > 0; --flips)
            copy[random() % copy.size()] = static_cast<std::uint8_t>(random());
        check(copy);
    }
}

}  // namespace peBuilder
