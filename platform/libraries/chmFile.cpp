#include "platform/libraries/chmFile.h"

#include <chm_lib.h>

#include <cstring>
#include <fstream>
#include <memory>

#include "platform/failure.h"
#include "platform/libraries/chmStructure.h"
#include "platform/machine/caseFold.h"

namespace platform {

namespace {

constexpr std::uintmax_t longestFile = 64u << 20;  // bytes
constexpr std::uint64_t mostTogether = 64u << 20;  // bytes of all objects

std::string keyOf(std::string_view name) {
    while (!name.empty() && name.front() == '/')
        name.remove_prefix(1);
    return foldAscii(name);
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        throw makeFailure(pathFileAccessError, file.string() + " is no ordinary file");
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw failureFromErrno(errno, file.string());
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error || size > longestFile)
        throw makeFailure(pathFileAccessError, file.string() + ": no file of a help file's length");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    if (stream.gcount() != static_cast<std::streamsize>(size))
        throw makeFailure(pathFileAccessError, file.string() + ": cannot be read to its end");
    return bytes;
}

struct Closer {
    void operator()(chmFile* file) const { chm_close(file); }
};

std::string unpack(chmFile* file, const ChmObject& object, const std::string& name) {
    chmUnitInfo place{};
    place.start = object.offset;
    place.length = object.length;
    place.space = object.compressed ? CHM_COMPRESSED : CHM_UNCOMPRESSED;
    std::string bytes(static_cast<std::size_t>(object.length), '\0');
    const auto got = chm_retrieve_object(file, &place, reinterpret_cast<unsigned char*>(bytes.data()), 0,
                                         static_cast<LONGINT64>(object.length));
    if (got != static_cast<LONGINT64>(object.length))
        throw makeFailure(pathFileAccessError, name + ": " + object.path + " cannot be unpacked");
    return bytes;
}

Bytes bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool isUtf8(std::string_view text) {
    std::size_t following = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (following > 0) {
            if ((byte & 0xC0) != 0x80)
                return false;
            --following;
        } else if (byte >= 0x80) {
            if (byte < 0xC2 || byte > 0xF4)
                return false;
            following = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        }
    }
    return following == 0;
}

std::string toUtf8(std::string_view text) {
    if (isUtf8(text))
        return std::string(text);
    std::string result;
    for (const char c : text)
        appendUtf8(result, static_cast<unsigned char>(c));
    return result;
}

// The text up to its NUL.
std::string textAt(const std::string& bytes, std::size_t offset) {
    if (offset >= bytes.size())
        return {};
    const std::string_view rest = std::string_view(bytes).substr(offset);
    return toUtf8(rest.substr(0, rest.find('\0')));
}

bool isPage(std::string_view key) {
    return key.ends_with(".html") || key.ends_with(".htm");
}

}  // namespace

ChmFile ChmFile::open(const std::filesystem::path& file) {
    const std::string name = file.string();
    const std::vector<ChmObject> directory = chmDirectory(readBytes(file), name);
    const std::unique_ptr<chmFile, Closer> handle(chm_open(name.c_str()));
    if (!handle)
        throw makeFailure(pathFileAccessError, name + ": not a compiled help file");

    ChmFile help;
    std::uint64_t together = 0;
    for (const ChmObject& object : directory) {
        if (object.path.size() < 2 || object.path.front() != '/' || object.path.back() == '/')
            continue;  // the compression's own objects, and folders
        together += object.length;
        if (together > mostTogether)
            throw makeFailure(pathFileAccessError, name + ": holds more than a help file does");
        help.objects_[keyOf(object.path)] = {object.path.substr(1), unpack(handle.get(), object, name)};
    }
    help.readSystem();
    help.readTopics();
    const auto sitemap = [&](const std::string& page) {
        const std::string* text = help.find(page);
        return text ? parseSitemap(toUtf8(*text)) : std::vector<ChmEntry>();
    };
    help.contents_ = sitemap(help.contentsName_);
    help.index_ = sitemap(help.indexName_);
    help.chooseDefaultPage();
    if (help.defaultPage_.empty())
        throw makeFailure(pathFileAccessError, name + ": holds no page");
    return help;
}

// The format's own list of facts: contents, index, first page and title.
void ChmFile::readSystem() {
    const std::string* system = find("#SYSTEM");
    if (!system)
        return;
    const Bytes bytes = bytesOf(*system);
    for (std::uint64_t at = 4; at < bytes.size();) {
        const auto code = littleEndian<std::uint16_t>(bytes, at);
        const auto length = littleEndian<std::uint16_t>(bytes, at + 2);
        if (!code || !length)
            return;
        const auto value = slice(bytes, at + 4, *length);
        if (!value)
            return;
        const std::string text = textAt(std::string(value->begin(), value->end()), 0);
        switch (*code) {
            case 0:
                contentsName_ = text;
                break;
            case 1:
                indexName_ = text;
                break;
            case 2:
                defaultPage_ = text;
                break;
            case 3:
                title_ = text;
                break;
            default:
                break;
        }
        at += 4ull + *length;
    }
}

void ChmFile::readTopics() {
    const std::string* numbers = find("#IVB");
    const std::string* names = find("#STRINGS");
    if (!numbers || !names)
        return;
    const Bytes bytes = bytesOf(*numbers);
    for (std::uint64_t at = 4; at + 8 <= bytes.size(); at += 8) {
        const auto topic = littleEndian<std::uint32_t>(bytes, at);
        const auto name = littleEndian<std::uint32_t>(bytes, at + 4);
        // Compilers write the path that the page had on their machine: its end is the page's name here.
        std::string page = textAt(*names, *name);
        for (std::size_t slash = 0; slash != std::string::npos && !find(page);) {
            slash = page.find('/');
            page.erase(0, slash == std::string::npos ? slash : slash + 1);
        }
        if (!page.empty())
            topics_.emplace(static_cast<long>(*topic), page);
    }
}

void ChmFile::chooseDefaultPage() {
    if (!defaultPage_.empty() && find(defaultPage_))
        return;
    const std::vector<std::string> all = pages();
    defaultPage_ = all.empty() ? std::string() : all.front();
}

std::vector<std::string> ChmFile::pages() const {
    std::vector<std::string> names;
    for (const auto& [key, object] : objects_)
        if (isPage(key))
            names.push_back(object.name);
    return names;
}

std::optional<std::string> ChmFile::pageOfTopic(long topic) const {
    const auto found = topics_.find(topic);
    return found == topics_.end() ? std::nullopt : std::optional(found->second);
}

const std::string* ChmFile::find(std::string_view name) const {
    const auto found = objects_.find(keyOf(name));
    return found == objects_.end() ? nullptr : &found->second.bytes;
}

}  // namespace platform
