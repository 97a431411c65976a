#include "platform/libraries/stringLibrary.h"

#include <algorithm>
#include <array>

#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/libraries/peFile.h"

namespace platform {

namespace {

constexpr std::uint32_t stringsPerBlock = 16;
constexpr std::uint32_t lastBlock = 4096;  // ids of strings have 16 bits

using Block = std::array<std::u16string, stringsPerBlock>;

// Nothing when a string reaches beyond the block: the lengths before it deserve no trust either.
std::optional<Block> readBlock(Bytes data) {
    Block block;
    std::uint64_t offset = 0;
    for (std::u16string& text : block) {
        const auto length = littleEndian<std::uint16_t>(data, offset);
        const auto units = length ? slice(data, offset + 2, std::uint64_t{*length} * 2) : std::nullopt;
        if (!units)
            return std::nullopt;
        text.reserve(*length);
        for (std::size_t i = 0; i < units->size(); i += 2)
            text.push_back(static_cast<char16_t>((*units)[i] | (*units)[i + 1] << 8));
        offset += 2 + units->size();
    }
    return block;
}

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

}  // namespace

std::optional<StringLibrary> StringLibrary::open(const std::filesystem::path& file) {
    try {
        const std::string content = files::readFile(file);
        return parse({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()});
    } catch (const Failure&) {
        return std::nullopt;
    }
}

std::optional<StringLibrary> StringLibrary::parse(std::span<const std::uint8_t> bytes) {
    const auto blocks = peResources(bytes, ResourceType::stringTable);
    if (!blocks)
        return std::nullopt;
    StringLibrary library;
    std::uint64_t total = 0;
    for (const Resource& resource : *blocks) {
        // Blocks that share their bytes could make a small file fill the memory.
        total += resource.data.size();
        if (total > bytes.size())
            return std::nullopt;
        if (resource.id == 0 || resource.id > lastBlock)
            continue;
        auto block = readBlock(resource.data);
        if (!block)
            continue;
        std::uint32_t id = (resource.id - 1) * stringsPerBlock;
        for (std::u16string& text : *block) {
            if (!text.empty())
                library.strings_.try_emplace(id, std::move(text));
            ++id;
        }
    }
    return library;
}

std::string StringLibrary::loadString(std::uint32_t id, std::size_t maxUnits) const {
    const auto found = strings_.find(id);
    if (found == strings_.end())
        return {};
    std::u16string_view text = found->second;
    if (text.size() > maxUnits) {
        const bool splitsPair = maxUnits > 0 && isHighSurrogate(text[maxUnits - 1]) &&
                                text[maxUnits] >= 0xDC00 && text[maxUnits] <= 0xDFFF;
        text = text.substr(0, splitsPair ? maxUnits - 1 : maxUnits);
    }
    return utf8(text);
}

}  // namespace platform
