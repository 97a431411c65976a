// What the readers of foreign binary files share: bounds-checked little-endian numbers, UTF-16 and UTF-8,
// and the resource tree of a PE file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

using Bytes = std::span<const std::uint8_t>;

// The number at `offset`; nothing when it does not lie wholly within the bytes.
template <class Number>
std::optional<Number> littleEndian(Bytes bytes, std::uint64_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Number))
        return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(Number); i-- > 0;)
        value = value << 8 | bytes[static_cast<std::size_t>(offset) + i];
    return static_cast<Number>(value);
}

// The part [offset, offset + size); nothing when it reaches beyond the bytes.
std::optional<Bytes> slice(Bytes bytes, std::uint64_t offset, std::uint64_t size);

void appendUtf8(std::string& text, char32_t codePoint);
// Surrogates without their partner become U+FFFD.
std::string utf8(std::u16string_view text);

// Types of the resources that we read.
enum class ResourceType : std::uint32_t { stringTable = 6, version = 16 };

struct Resource {
    std::uint32_t id;
    Bytes data;  // empty when the file does not hold it
};

// The resources of a type that have a number, each in the first of its languages. Nothing when the bytes
// are no PE file, have no such type or have a malformed resource tree.
std::optional<std::vector<Resource>> peResources(Bytes file, ResourceType type);

}  // namespace platform
