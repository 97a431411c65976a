#include "platform/libraries/peFile.h"

#include <algorithm>

namespace platform {

namespace {

constexpr std::uint32_t subdirectoryFlag = 0x80000000u;
constexpr std::uint16_t maximumSections = 96;  // the system's loader takes no more

struct Section {
    std::uint32_t address;  // relative to the image's base
    std::uint32_t size;     // bytes in the file
    std::uint32_t offset;   // in the file
};

struct Image {
    std::vector<Section> sections;
    std::uint32_t resources;  // address of the resource tree
};

std::optional<Image> readImage(Bytes file) {
    const auto dosSignature = littleEndian<std::uint16_t>(file, 0);
    const auto header = littleEndian<std::uint32_t>(file, 0x3C);
    if (dosSignature != 0x5A4D || !header || littleEndian<std::uint32_t>(file, *header) != 0x4550u)
        return std::nullopt;
    const std::uint64_t coff = std::uint64_t{*header} + 4;
    const auto sectionCount = littleEndian<std::uint16_t>(file, coff + 2);
    const auto optionalSize = littleEndian<std::uint16_t>(file, coff + 16);
    if (!sectionCount || *sectionCount > maximumSections || !optionalSize)
        return std::nullopt;

    const auto optional = slice(file, coff + 20, *optionalSize);
    if (!optional)
        return std::nullopt;
    const auto magic = littleEndian<std::uint16_t>(*optional, 0);
    if (magic != 0x10B && magic != 0x20B)
        return std::nullopt;
    const std::uint64_t directories = magic == 0x10B ? 96 : 112;
    constexpr std::uint64_t resourceEntry = 2;
    const auto directoryCount = littleEndian<std::uint32_t>(*optional, directories - 4);
    const auto resources = littleEndian<std::uint32_t>(*optional, directories + resourceEntry * 8);
    if (!directoryCount || *directoryCount <= resourceEntry || !resources || *resources == 0)
        return std::nullopt;

    Image image{{}, *resources};
    for (std::uint64_t i = 0; i < *sectionCount; ++i) {
        const std::uint64_t entry = coff + 20 + *optionalSize + i * 40;
        const auto address = littleEndian<std::uint32_t>(file, entry + 12);
        const auto size = littleEndian<std::uint32_t>(file, entry + 16);
        const auto offset = littleEndian<std::uint32_t>(file, entry + 20);
        if (!address || !size || !offset)
            return std::nullopt;
        image.sections.push_back({*address, *size, *offset});
    }
    return image;
}

// What the file holds from an address to the end of that address's section.
Bytes fromAddress(const Image& image, Bytes file, std::uint32_t address) {
    for (const Section& section : image.sections) {
        if (address < section.address || address - section.address >= section.size)
            continue;
        const std::uint64_t delta = address - section.address;
        return slice(file, section.offset + delta, section.size - delta).value_or(Bytes{});
    }
    return {};
}

struct Entry {
    std::uint32_t id;
    std::uint32_t target;
};

// The entries of one directory of the tree; nothing when it leaves the tree's bytes.
class Directory {
  public:
    static std::optional<Directory> at(Bytes tree, std::uint32_t offset) {
        const auto named = littleEndian<std::uint16_t>(tree, std::uint64_t{offset} + 12);
        const auto numbered = littleEndian<std::uint16_t>(tree, std::uint64_t{offset} + 14);
        if (!named || !numbered)
            return std::nullopt;
        const auto entries = slice(tree, std::uint64_t{offset} + 16, (std::uint64_t{*named} + *numbered) * 8);
        if (!entries)
            return std::nullopt;
        return Directory(*entries, *named);
    }

    std::size_t size() const { return entries_.size() / 8; }
    // Entries with a name come before those with a number.
    std::size_t firstNumbered() const { return firstNumbered_; }
    Entry operator[](std::size_t index) const {
        return {littleEndian<std::uint32_t>(entries_, index * 8).value_or(0),
                littleEndian<std::uint32_t>(entries_, index * 8 + 4).value_or(0)};
    }
    // The directory below an entry; nothing for a leaf.
    std::optional<Directory> below(Bytes tree, std::size_t index) const {
        const std::uint32_t target = (*this)[index].target;
        return target & subdirectoryFlag ? at(tree, target & ~subdirectoryFlag) : std::nullopt;
    }

  private:
    Directory(Bytes entries, std::size_t firstNumbered) : entries_(entries), firstNumbered_(firstNumbered) {}

    Bytes entries_;
    std::size_t firstNumbered_;
};

std::optional<Directory> typeDirectory(Bytes tree, ResourceType type) {
    const auto root = Directory::at(tree, 0);
    if (!root)
        return std::nullopt;
    for (std::size_t i = root->firstNumbered(); i < root->size(); ++i)
        if ((*root)[i].id == static_cast<std::uint32_t>(type))
            return root->below(tree, i);
    return std::nullopt;
}

}  // namespace

std::optional<Bytes> slice(Bytes bytes, std::uint64_t offset, std::uint64_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset)
        return std::nullopt;
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

void appendUtf8(std::string& text, char32_t codePoint) {
    const auto append = [&](char32_t value) { text.push_back(static_cast<char>(value)); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0 | codePoint >> 6);
        append(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        append(0xE0 | codePoint >> 12);
        append(0x80 | (codePoint >> 6 & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    } else {
        append(0xF0 | codePoint >> 18);
        append(0x80 | (codePoint >> 12 & 0x3F));
        append(0x80 | (codePoint >> 6 & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    }
}

std::string utf8(std::u16string_view text) {
    constexpr char32_t replacement = 0xFFFD;
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (unit < 0xD800 || unit > 0xDFFF) {
            appendUtf8(result, unit);
        } else if (unit < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            appendUtf8(result, 0x10000 + ((unit - 0xD800) << 10) + (char32_t{text[i + 1]} - 0xDC00));
            ++i;
        } else {
            appendUtf8(result, replacement);
        }
    }
    return result;
}

std::optional<std::vector<Resource>> peResources(Bytes file, ResourceType type) {
    const auto image = readImage(file);
    if (!image)
        return std::nullopt;
    const Bytes tree = fromAddress(*image, file, image->resources);
    const auto names = typeDirectory(tree, type);
    if (!names)
        return std::nullopt;

    std::vector<Resource> resources;
    for (std::size_t i = names->firstNumbered(); i < names->size(); ++i) {
        const auto languages = names->below(tree, i);
        if (!languages || languages->size() == 0)
            return std::nullopt;
        const std::uint32_t leaf = (*languages)[0].target;
        const auto address = littleEndian<std::uint32_t>(tree, leaf);
        const auto size = littleEndian<std::uint32_t>(tree, std::uint64_t{leaf} + 4);
        if (leaf & subdirectoryFlag || !address || !size)
            return std::nullopt;
        const Bytes data = fromAddress(*image, file, *address);
        resources.push_back({(*names)[i].id, slice(data, 0, *size).value_or(Bytes{})});
    }
    return resources;
}

}  // namespace platform
