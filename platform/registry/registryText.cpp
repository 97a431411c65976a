#include "platform/registry/registryText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "platform/failure.h"
#include "platform/files/textStream.h"

namespace platform {

namespace {

constexpr std::string_view headerComment =
    "; The registry of this host. Editing it by hand is fine while no program writes it.";

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The export format's own headings, of its two versions.
bool isHeading(std::string_view line) {
    return line == "REGEDIT4" || line.ends_with("Registry Editor Version 5.00");
}

class Parser {
  public:
    Parser(std::string_view text, std::string_view name) : text_(text), name_(name) {}

    RegistryTree parse() {
        if (text_.starts_with("\xEF\xBB\xBF"))
            text_.remove_prefix(3);
        RegistryTree tree;
        RegistryKey* key = nullptr;
        while (!text_.empty()) {
            const std::string_view line = trimmed(nextLine());
            if (!isValidUtf8(line))
                fail("the text is not UTF-8");
            if (line.empty() || line.front() == ';')
                continue;
            if (line.front() == '[') {
                key = &addRegistryKey(tree, section(line));
            } else if (line.front() == '"' || line.front() == '@') {
                if (!key)
                    fail("a value before the first key");
                value(line, *key);
            } else if (key || !isHeading(line)) {
                fail("neither a key nor a value");
            }
        }
        return tree;
    }

  private:
    [[noreturn]] void fail(std::string_view reason) const {
        throw makeFailure(pathFileAccessError,
                          std::string(name_) + ":" + std::to_string(line_) + ": " + std::string(reason));
    }

    std::string_view nextLine() {
        ++line_;
        const std::size_t end = text_.find('\n');
        const std::string_view line = text_.substr(0, end);
        text_.remove_prefix(end == std::string_view::npos ? text_.size() : end + 1);
        return line;
    }

    std::string section(std::string_view line) const {
        if (line.back() != ']')
            fail("a key without ']'");
        const std::string path = registryPath(line.substr(1, line.size() - 2));
        if (path.empty())
            fail("a key without a name");
        if (path.front() == '-')
            fail("deleting keys is not part of a store");
        if (isTooDeep(path))
            fail("a key too deep");
        return path;
    }

    // Takes a quoted text off the front of the line.
    std::string quoted(std::string_view& line) const {
        std::string result;
        for (std::size_t i = 1; i < line.size(); ++i) {
            char c = line[i];
            if (c == '"') {
                line.remove_prefix(i + 1);
                return result;
            }
            if (c == '\\') {
                if (++i == line.size())
                    break;
                c = line[i] == 'n' ? '\n' : line[i] == 'r' ? '\r' : line[i];
                if (c == line[i] && c != '\\' && c != '"')
                    fail("an escape other than \\\\, \\\", \\n and \\r");
            }
            result += c;
        }
        fail("a text without its closing quote");
    }

    void value(std::string_view line, RegistryKey& key) {
        std::string name;
        if (line.front() == '@')
            line.remove_prefix(1);
        else
            name = quoted(line);
        line = trimmed(line);
        if (line.empty() || line.front() != '=')
            fail("a value without '='");
        line = trimmed(line.substr(1));
        key.values.insert_or_assign(name, content(line));
    }

    RegistryValue content(std::string_view line) {
        if (line.starts_with('"')) {
            std::string text = quoted(line);
            if (!trimmed(line).empty())
                fail("something behind the closing quote");
            return text;
        }
        if (line.starts_with("dword:"))
            return number(line.substr(6));
        if (line.starts_with("hex:"))
            return bytes(line.substr(4));
        fail("a value of a kind that is not kept here");
    }

    std::uint32_t number(std::string_view digits) const {
        std::uint32_t result = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), result, 16);
        if (digits.size() != 8 || error != std::errc() || end != digits.data() + digits.size())
            fail("a double word is eight hexadecimal digits");
        return result;
    }

    std::vector<std::uint8_t> bytes(std::string_view list) {
        std::vector<std::uint8_t> result;
        for (;;) {
            const bool goesOn = list.ends_with('\\');
            if (goesOn)
                list = trimmed(list.substr(0, list.size() - 1));
            while (!list.empty()) {
                std::uint8_t byte = 0;
                const auto [end, error] = std::from_chars(list.data(), list.data() + list.size(), byte, 16);
                if (error != std::errc() || end - list.data() > 2)
                    fail("a byte is two hexadecimal digits");
                result.push_back(byte);
                list = trimmed(list.substr(static_cast<std::size_t>(end - list.data())));
                if (list.empty())
                    break;
                if (list.front() != ',')
                    fail("bytes are separated by commas");
                list = trimmed(list.substr(1));
            }
            if (!goesOn)
                return result;
            if (text_.empty())
                fail("the last line goes on");
            list = trimmed(nextLine());
        }
    }

    std::string_view text_;
    std::string_view name_;
    long line_ = 0;
};

std::string quotedForm(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (c == '"' || c == '\\')
            result.append(1, '\\').append(1, c);
        else
            result += c;
    }
    return result += '"';
}

std::string hexForm(unsigned long number, int digits) {
    std::array<char, 20> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%0*lx", digits, number);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string contentForm(const RegistryValue& value) {
    if (const auto* text = std::get_if<std::string>(&value))
        return quotedForm(*text);
    if (const auto* number = std::get_if<std::uint32_t>(&value))
        return "dword:" + hexForm(*number, 8);
    std::string result = "hex:";
    const char* separator = "";
    for (const std::uint8_t byte : std::get<std::vector<std::uint8_t>>(value)) {
        result.append(separator).append(hexForm(byte, 2));
        separator = ",";
    }
    return result;
}

}  // namespace

std::string registryPath(std::string_view path) {
    std::string result;
    for (const char c : path)
        if (c != '\\' || (!result.empty() && result.back() != '\\'))
            result += c;
    if (!result.empty() && result.back() == '\\')
        result.pop_back();
    return result;
}

bool isTooDeep(std::string_view registryPath) noexcept {
    return std::count(registryPath.begin(), registryPath.end(), '\\') >=
           static_cast<std::ptrdiff_t>(deepestKey);
}

RegistryKey& addRegistryKey(RegistryTree& tree, std::string_view path) {
    for (std::size_t end = path.find('\\'); end != std::string_view::npos; end = path.find('\\', end + 1))
        tree.try_emplace(std::string(path.substr(0, end)), RegistryKey{std::string(path.substr(0, end)), {}});
    return tree.try_emplace(std::string(path), RegistryKey{std::string(path), {}}).first->second;
}

RegistryTree parseRegistry(std::string_view text, std::string_view name) {
    return Parser(text, name).parse();
}

std::string formatRegistry(const RegistryTree& tree) {
    std::string text(headerComment);
    text += '\n';
    for (const auto& [path, key] : tree) {
        text.append("\n[").append(key.path).append("]\n");
        for (const auto& [name, value] : key.values)
            text.append(name.empty() ? "@" : quotedForm(name))
                .append("=")
                .append(contentForm(value))
                .append("\n");
    }
    return text;
}

}  // namespace platform
