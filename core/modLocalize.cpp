#include "core/modLocalize.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "core/boxOnFailure.h"
#include "core/state.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/host.h"
#include "platform/machine/language.h"

namespace modLocalize {

namespace {

constexpr long englishId = 1033;
constexpr long resourceNotFound = 326;
constexpr std::string_view libraryPrefix = "QLNBrandingRes_";
constexpr std::size_t codeLength = 3;

struct Language {
    std::string_view code;
    long id;
};

constexpr std::array<Language, 40> languages{{
    {"ENU", 1033},  {"ENG", 2057}, {"ENA", 3081},  {"ENC", 4105},  {"ENZ", 5129},  {"ENI", 6153},
    {"DEU", 1031},  {"DES", 2055}, {"DEA", 3079},  {"DEL", 4103},  {"DEC", 5127},  {"ESP", 1034},
    {"ESM", 2058},  {"ESN", 3082}, {"ESG", 4106},  {"ESC", 5130},  {"ESA", 6154},  {"ESD", 7178},
    {"ESV", 8202},  {"ESO", 9226}, {"ESR", 10250}, {"ESS", 11274}, {"ESH", 18442}, {"ESI", 19466},
    {"ESU", 20490}, {"FRA", 1036}, {"FRB", 2060},  {"FRC", 3084},  {"FRS", 4108},  {"FRL", 5132},
    {"ITA", 1040},  {"ITS", 2064}, {"JPN", 1041},  {"NLD", 1043},  {"NLB", 2067},  {"NOR", 1044},
    {"NON", 2068},  {"PTB", 1046}, {"PTG", 2070},  {"ACD", -1},
}};

std::function<void()> windowFontsHook;

// The library's file: the name as the program spells it, else the first one that differs in case only.
std::filesystem::path findLibrary(const std::string& code) {
    const std::filesystem::path folder = platform::program::folder();
    const std::string name = "QLNbrandingres_" + code + ".dll";
    if (!platform::files::fileExists(folder / name) && platform::files::folderExists(folder))
        for (const auto& file : platform::files::listFiles(folder))
            if (platform::equalsIgnoringAsciiCase(file.name, name))
                return folder / file.name;
    return folder / name;
}

void collectLanguages() {
    core::gLanguages.clear();
    for (const auto& file : platform::files::listFiles(platform::program::folder()))
        if (platform::equalsIgnoringAsciiCase(std::string_view(file.name).substr(0, libraryPrefix.size()),
                                              libraryPrefix))
            core::gLanguages.push_back(file.name.substr(libraryPrefix.size(), codeLength));
}

}  // namespace

void InitalizeLanguages() {
    const std::string introduction = "Error in InitalizeLanguages: ";
    core::boxOnFailure(introduction, [] {
        if (core::gLanguageId == 0)
            core::gLanguageId = platform::userDefaultLanguageId();
    });
    core::gResourceLibrary.reset();
    core::boxOnFailure(introduction, [] {
        core::gResourceLibrary =
            platform::StringLibrary::open(findLibrary(languageIdToCode(core::gLanguageId)));
    });
    core::boxOnFailure(introduction, collectLanguages);
    if (core::gLanguages.empty())
        core::gLanguages.emplace_back();
    core::boxOnFailure(introduction, [] {
        if (windowFontsHook)
            windowFontsHook();
    });
}

std::string myLoadResString(long id) {
    std::string text;
    core::boxOnFailure("error in myLoadResString: ", [&] {
        if (core::gResourceLibrary && id >= 0)
            text = core::gResourceLibrary->loadString(static_cast<std::uint32_t>(id));
        if (!text.empty())
            return;
        const char* english = englishString(id);
        if (!english)
            throw platform::Failure(resourceNotFound,
                                    "Resource with identifier '" + std::to_string(id) + "' not found");
        text = english;
    });
    return text;
}

std::string languageIdToCode(long id) {
    if (id == 0)
        id = englishId;
    const auto row = std::ranges::find(languages, id, &Language::id);
    return row != languages.end() ? std::string(row->code) : "ERROR";
}

long languageCodeToId(std::string_view code) {
    const auto row = std::ranges::find(languages, code, &Language::code);
    return row != languages.end() ? row->id : englishId;
}

std::string languageIdToName(long id) {
    std::string name = platform::languageName(id);
    return name.empty() ? "(error)" : name;
}

std::string languageCodeToName(std::string_view code) {
    return languageIdToName(languageCodeToId(code));
}

std::string userLanguageCode() {
    return languageIdToCode(platform::userDefaultLanguageId());
}

LanguageFont languageFont(long languageId) {
    switch (languageId) {
        case 1042:
            return {129, "굴림"};
        case 1028:
            return {136, "新細明體"};
        case 1041:
            return {128, "ＭＳ Ｐゴシック"};
        case 2052:
            return {134, "宋体"};
        default:
            return {1, {}};
    }
}

void setWindowFontsHook(std::function<void()> hook) {
    windowFontsHook = std::move(hook);
}

}  // namespace modLocalize
