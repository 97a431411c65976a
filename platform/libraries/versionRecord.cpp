#include "platform/libraries/versionRecord.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string_view>

#include "platform/files/textStream.h"
#include "platform/libraries/fileParts.h"
#include "platform/libraries/peFile.h"

namespace platform {

namespace {

// Programs with debugging information are large; nothing larger than this is one.
constexpr std::uint64_t largestFile = 512ull << 20;

// Reads a JSON object whose values are all strings, which is what a package note is.
class FlatObjectReader {
  public:
    explicit FlatObjectReader(std::string_view text) : rest_(text) {}

    // Nothing for anything else, a repeated name or text behind the object.
    std::optional<std::map<std::string, std::string>> read() {
        std::map<std::string, std::string> members;
        if (!take('{'))
            return std::nullopt;
        if (!take('}')) {
            do {
                auto name = string();
                if (!name || !take(':'))
                    return std::nullopt;
                auto value = string();
                if (!value || !members.emplace(std::move(*name), std::move(*value)).second)
                    return std::nullopt;
            } while (take(','));
            if (!take('}'))
                return std::nullopt;
        }
        skipBlanks();
        return rest_.empty() ? std::optional(std::move(members)) : std::nullopt;
    }

  private:
    void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size())); }

    bool take(char wanted) {
        skipBlanks();
        if (!rest_.starts_with(wanted))
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::optional<std::string> string() {
        if (!take('"'))
            return std::nullopt;
        std::string text;
        while (!rest_.empty()) {
            const char next = rest_.front();
            rest_.remove_prefix(1);
            if (next == '"')
                return text;
            if (static_cast<unsigned char>(next) < 0x20)
                return std::nullopt;
            if (next != '\\')
                text.push_back(next);
            else if (!escape(text))
                return std::nullopt;
        }
        return std::nullopt;
    }

    bool escape(std::string& text) {
        if (rest_.empty())
            return false;
        const char kind = rest_.front();
        rest_.remove_prefix(1);
        if (kind == 'u')
            return codePoint(text);
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        const std::size_t index = letters.find(kind);
        if (index == std::string_view::npos)
            return false;
        text.push_back(meanings[index]);
        return true;
    }

    bool codePoint(std::string& text) {
        auto value = fourDigits();
        if (!value || (*value >= 0xDC00 && *value <= 0xDFFF))
            return false;
        if (*value >= 0xD800 && *value <= 0xDBFF) {
            if (!rest_.starts_with("\\u"))
                return false;
            rest_.remove_prefix(2);
            const auto low = fourDigits();
            if (!low || *low < 0xDC00 || *low > 0xDFFF)
                return false;
            value = 0x10000 + ((*value - 0xD800) << 10) + (*low - 0xDC00);
        }
        appendUtf8(text, *value);
        return true;
    }

    std::optional<std::uint32_t> fourDigits() {
        std::uint32_t value = 0;
        if (rest_.size() < 4)
            return std::nullopt;
        const char* const end = rest_.data() + 4;
        if (std::from_chars(rest_.data(), end, value, 16).ptr != end)
            return std::nullopt;
        rest_.remove_prefix(4);
        return value;
    }

    std::string_view rest_;
};

std::optional<std::array<std::uint16_t, 4>> parseNumbers(std::string_view text) {
    std::array<std::uint16_t, 4> numbers{};
    const char* next = text.data();
    const char* const end = next + text.size();
    for (std::uint16_t& number : numbers) {
        const auto [stop, error] = std::from_chars(next, end, number);
        if (error != std::errc{})
            return std::nullopt;
        if (stop == end)
            return numbers;
        if (*stop != '.')
            return std::nullopt;
        next = stop + 1;
    }
    return std::nullopt;
}

std::optional<VersionRecord> parsePackageNote(Bytes description) {
    std::string_view text(reinterpret_cast<const char*>(description.data()), description.size());
    // The linker ends the text with a zero and pads with more.
    text = text.substr(0, text.find_last_not_of('\0') + 1);
    const auto members = isValidUtf8(text) ? FlatObjectReader(text).read() : std::nullopt;
    if (!members || !members->contains("version"))
        return std::nullopt;
    const auto numbers = parseNumbers(members->at("version"));
    if (!numbers)
        return std::nullopt;
    const auto name = members->find("name");
    return VersionRecord{*numbers, name == members->end() ? std::string() : name->second};
}

// The description of the package note among the notes of one section or segment.
std::optional<Bytes> findPackageNote(Bytes notes, std::uint64_t alignment) {
    constexpr std::uint32_t packageNote = 0xCAFE1A7E;
    constexpr std::string_view owner("FDO\0", 4);
    const auto aligned = [&](std::uint64_t value) { return (value + alignment - 1) / alignment * alignment; };
    for (std::uint64_t at = 0; at < notes.size();) {
        const auto nameSize = littleEndian<std::uint32_t>(notes, at);
        const auto size = littleEndian<std::uint32_t>(notes, at + 4);
        const auto type = littleEndian<std::uint32_t>(notes, at + 8);
        if (!nameSize || !size || !type)
            return std::nullopt;
        const auto name = slice(notes, at + 12, *nameSize);
        const std::uint64_t start = aligned(at + 12 + *nameSize);
        const auto description = slice(notes, start, *size);
        if (!name || !description)
            return std::nullopt;
        if (type == packageNote && std::equal(name->begin(), name->end(), owner.begin(), owner.end()))
            return description;
        at = aligned(start + *size);
    }
    return std::nullopt;
}

// Where a table of the file's header stands and what an entry says of its part of the file.
struct NoteTable {
    std::uint64_t tableOffset;  // in the file's header: where the table's own offset stands
    std::uint64_t entrySize;    // and the sizes of an entry
    std::uint64_t entryCount;   // and their number
    std::uint64_t type;         // in an entry
    std::uint32_t noteType;
    std::uint64_t offset, size, alignment;
};
constexpr NoteTable segmentTable{32, 54, 56, 0, 4, 8, 32, 48};
constexpr NoteTable sectionTable{40, 58, 60, 4, 7, 24, 32, 48};

using Part = std::vector<std::uint8_t>;

std::optional<Part> findPackageNote(const FileParts& file, Bytes header, const NoteTable& table) {
    const auto start = littleEndian<std::uint64_t>(header, table.tableOffset).value_or(0);
    const auto entrySize = littleEndian<std::uint16_t>(header, table.entrySize).value_or(0);
    const auto count = littleEndian<std::uint16_t>(header, table.entryCount).value_or(0);
    constexpr std::uint16_t smallestEntry = 56;
    if (entrySize < smallestEntry)
        return std::nullopt;
    const auto entries = file.read(start, std::uint64_t{entrySize} * count);
    if (!entries)
        return std::nullopt;
    std::uint64_t walked = 0;
    for (std::uint64_t at = 0; at < entries->size(); at += entrySize) {
        if (littleEndian<std::uint32_t>(*entries, at + table.type) != table.noteType)
            continue;
        const auto offset = littleEndian<std::uint64_t>(*entries, at + table.offset);
        const auto size = littleEndian<std::uint64_t>(*entries, at + table.size);
        const auto alignment = littleEndian<std::uint64_t>(*entries, at + table.alignment);
        const auto notes = offset && size ? file.read(*offset, *size) : std::nullopt;
        if (!notes)
            continue;
        // Entries that share their bytes could make the walk take hours.
        walked += notes->size();
        if (walked > file.size())
            return std::nullopt;
        if (const auto note = findPackageNote(*notes, alignment == 8u ? 8 : 4))
            return Part(note->begin(), note->end());
    }
    return std::nullopt;
}

std::optional<VersionRecord> parseElf(const FileParts& file) {
    constexpr std::uint64_t headerSize = 64;
    constexpr std::uint8_t elf64 = 2;
    constexpr std::uint8_t littleEndianData = 1;
    const auto header = file.read(0, headerSize);
    if (!header || (*header)[4] != elf64 || (*header)[5] != littleEndianData)
        return std::nullopt;
    auto note = findPackageNote(file, *header, segmentTable);
    if (!note)
        note = findPackageNote(file, *header, sectionTable);
    return note ? parsePackageNote(*note) : std::nullopt;
}

// One block of a version resource: a key, a value and blocks below.
struct VersionBlock {
    std::u16string key;
    Bytes value;     // from the value to the block's end
    bool malformed;  // no block stands there
    std::uint64_t end;
};

std::uint64_t aligned4(std::uint64_t offset) {
    return (offset + 3) / 4 * 4;
}

std::u16string zeroTerminated(Bytes bytes) {
    std::u16string text;
    for (std::uint64_t at = 0;; at += 2) {
        const auto unit = littleEndian<std::uint16_t>(bytes, at);
        if (!unit || *unit == 0)
            return text;
        text.push_back(static_cast<char16_t>(*unit));
    }
}

// `resource` is all of the resource up to the enclosing block's end, because padding counts from its start.
VersionBlock readVersionBlock(Bytes resource, std::uint64_t at) {
    constexpr std::uint64_t header = 6;
    const auto length = littleEndian<std::uint16_t>(resource, at);
    const auto block = length && *length > header ? slice(resource, at, *length) : std::nullopt;
    if (!block)
        return {{}, {}, true, resource.size()};
    std::u16string key = zeroTerminated(block->subspan(header));
    const std::uint64_t value = aligned4(at + header + (key.size() + 1) * 2) - at;
    const Bytes rest = value < block->size() ? block->subspan(static_cast<std::size_t>(value)) : Bytes{};
    return {std::move(key), rest, false, at + *length};
}

std::uint64_t offsetWithin(Bytes whole, Bytes part) {
    return part.empty() ? whole.size() : static_cast<std::uint64_t>(part.data() - whole.data());
}

// The value of StringFileInfo / any table / ProductName; empty when there is none to be read.
std::string findProductName(Bytes resource, std::uint64_t at) {
    while (at < resource.size()) {
        const VersionBlock info = readVersionBlock(resource, at);
        at = aligned4(info.end);
        if (info.malformed || info.key != u"StringFileInfo" || info.value.empty())
            continue;
        const Bytes tables = resource.first(static_cast<std::size_t>(info.end));
        for (std::uint64_t table = offsetWithin(resource, info.value); table < tables.size();) {
            const VersionBlock block = readVersionBlock(tables, table);
            const Bytes strings = tables.first(static_cast<std::size_t>(block.end));
            for (std::uint64_t next = offsetWithin(strings, block.value); next < strings.size();) {
                const VersionBlock entry = readVersionBlock(strings, next);
                if (entry.key == u"ProductName")
                    return utf8(zeroTerminated(entry.value));
                next = aligned4(entry.end);
            }
            table = aligned4(block.end);
        }
    }
    return {};
}

std::optional<VersionRecord> parseVersionResource(Bytes resource) {
    constexpr std::uint32_t fixedSignature = 0xFEEF04BD;
    constexpr std::uint64_t fixedSize = 52;
    const VersionBlock root = readVersionBlock(resource, 0);
    if (root.malformed || root.key != u"VS_VERSION_INFO" || root.value.size() < fixedSize ||
        littleEndian<std::uint32_t>(root.value, 0) != fixedSignature)
        return std::nullopt;
    VersionRecord record;
    // Two double words, each with its more significant word second.
    for (const std::size_t index : {0u, 1u, 2u, 3u})
        record.numbers[index] = littleEndian<std::uint16_t>(root.value, 8 + (index ^ 1) * 2).value_or(0);
    const Bytes whole = resource.first(static_cast<std::size_t>(root.end));
    record.productName = findProductName(whole, aligned4(offsetWithin(whole, root.value) + fixedSize));
    return record;
}

std::optional<VersionRecord> parse(const FileParts& file) {
    constexpr Part::value_type elfSignature[] = {0x7F, 'E', 'L', 'F'};
    const auto beginning = file.read(0, std::size(elfSignature));
    if (!beginning)
        return std::nullopt;
    if (std::equal(beginning->begin(), beginning->end(), elfSignature))
        return parseElf(file);
    const auto whole = file.read(0, file.size());
    const auto versions = whole ? peResources(*whole, ResourceType::version) : std::nullopt;
    return versions && !versions->empty() ? parseVersionResource(versions->front().data) : std::nullopt;
}

}  // namespace

std::optional<VersionRecord> parseVersionRecord(std::span<const std::uint8_t> bytes) {
    return parse(FileParts(bytes));
}

std::optional<VersionRecord> versionRecord(const std::filesystem::path& file) {
    const FileParts parts(file);
    return parts.size() <= largestFile ? parse(parts) : std::nullopt;
}

}  // namespace platform
