// Localized strings: the one way to user-visible text. The English table is part of the program; another
// language is a resource library in the program's folder, and falls back to English string by string.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace modLocalize {

// (Re)loads the library of gLanguageId and rebuilds gLanguages. Spelled so in its failure message.
void InitalizeLanguages();

// The string with that id, UTF-8. Never raises: an unknown id shows a plain box and gives the empty string.
std::string myLoadResString(long id);

// Code to id is one-to-one, and id 0 too is "ENU"; unknown ids give "ERROR", unknown codes 1033.
std::string languageIdToCode(long id);
long languageCodeToId(std::string_view code);
// The system's name of the language; "(error)" when it has none.
std::string languageIdToName(long id);
std::string languageCodeToName(std::string_view code);
// Code of the user's default language.
std::string userLanguageCode();

// Character set and font name for a language; an empty name leaves controls their own font.
struct LanguageFont {
    int characterSet;
    std::string name;
};
LanguageFont languageFont(long languageId);

// What a language change does to every loaded window (fonts). The window layer sets it.
void setWindowFontsHook(std::function<void()> hook);

// The program's own table: text of an id from 1000 to 1316, or a null pointer.
const char* englishString(long id);

}  // namespace modLocalize
