#include "platform/libraries/chmSitemap.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>

#include "platform/libraries/peFile.h"
#include "platform/machine/caseFold.h"

namespace platform {

namespace {

constexpr std::size_t deepest = 32;

// The character that an entity such as "amp" or "#233" stands for.
std::optional<std::string> entity(std::string_view name) {
    static const std::map<std::string_view, const char*> named{
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}, {"nbsp", "\u00A0"}};
    if (const auto found = named.find(name); found != named.end())
        return found->second;
    if (name.size() < 2 || name[0] != '#')
        return std::nullopt;
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), code);
    if (error != std::errc() || end != name.data() + name.size() || code == 0 || code > 0x10FFFF ||
        (code >= 0xD800 && code < 0xE000))
        return std::nullopt;
    std::string character;
    appendUtf8(character, code);
    return character;
}

std::string decoded(std::string_view text) {
    constexpr std::size_t longestEntity = 8;
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&') {
            const std::size_t end = text.substr(0, i + 2 + longestEntity).find(';', i);
            if (end != std::string_view::npos)
                if (const auto character = entity(text.substr(i + 1, end - i - 1))) {
                    result += *character;
                    i = end;
                    continue;
                }
        }
        result += text[i];
    }
    return result;
}

// One tag: its name in lower case, with "/" for a closing one, and its attributes.
struct Tag {
    std::string name;
    std::map<std::string, std::string> attributes;
};

// Reads the tag that begins behind a "<" at `at` and leaves `at` behind it.
Tag readTag(std::string_view text, std::size_t& at) {
    const auto space = [&] { return std::isspace(static_cast<unsigned char>(text[at])) != 0; };
    const auto word = [&](std::string_view ends) {
        const std::size_t begin = at;
        while (at < text.size() && !space() && ends.find(text[at]) == std::string_view::npos)
            ++at;
        return text.substr(begin, at - begin);
    };
    Tag tag;
    tag.name = foldAscii(word(">"));
    while (at < text.size() && text[at] != '>') {
        if (space() || text[at] == '=' || text[at] == '"') {
            ++at;
            continue;
        }
        const std::string name = foldAscii(word("=>\""));
        std::string_view value;
        if (at < text.size() && text[at] == '=') {
            ++at;
            if (at < text.size() && text[at] == '"') {
                const std::size_t end = std::min(text.find('"', at + 1), text.size());
                value = text.substr(at + 1, end - at - 1);
                at = std::min(end + 1, text.size());
            } else {
                value = word(">");
            }
        }
        tag.attributes.emplace(name, decoded(value));
    }
    return tag;
}

}  // namespace

std::vector<ChmEntry> parseSitemap(std::string_view text) {
    ChmEntry root;
    // The open lists by their place among the entries of the one above; pointers would not outlive growth.
    std::vector<std::size_t> lists;
    const auto listAt = [&] {
        ChmEntry* entry = &root;
        for (const std::size_t index : lists)
            entry = &entry->children[index];
        return entry;
    };
    std::optional<ChmEntry> open;
    std::vector<bool> nested;  // for every open list, whether it nests: the outermost one has nothing above
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
        const Tag tag = readTag(text, ++at);
        const auto attribute = [&](const char* name) {
            const auto found = tag.attributes.find(name);
            return found == tag.attributes.end() ? std::string() : found->second;
        };
        if (tag.name == "object") {
            if (foldAscii(attribute("type")) == "text/sitemap")
                open.emplace();
        } else if (tag.name == "param" && open) {
            const std::string name = foldAscii(attribute("name"));
            // An index entry may name several pages; the first counts.
            if (name == "name" && open->title.empty())
                open->title = attribute("value");
            else if (name == "local" && open->page.empty())
                open->page = attribute("value");
        } else if (tag.name == "/object" && open) {
            if (!open->title.empty())
                listAt()->children.push_back(std::move(*open));
            open.reset();
        } else if (tag.name == "ul") {
            const std::size_t entries = listAt()->children.size();
            nested.push_back(entries > 0 && lists.size() < deepest);
            if (nested.back())
                lists.push_back(entries - 1);
        } else if (tag.name == "/ul" && !nested.empty()) {
            if (nested.back())
                lists.pop_back();
            nested.pop_back();
        }
    }
    return std::move(root.children);
}

}  // namespace platform
