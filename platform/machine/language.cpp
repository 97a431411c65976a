#include "platform/machine/language.h"

#include <cstdlib>
#include <string_view>

namespace platform {

namespace {

struct Language {
    long id;
    std::string_view locale;  // "ll_CC"; the first row of a language serves the language alone
    const char* name;         // in that language, so that its speakers find it
};

constexpr long englishUnitedStates = 1033;

constexpr Language languages[] = {
    {1033, "en_US", "English (United States)"},
    {2057, "en_GB", "English (United Kingdom)"},
    {3081, "en_AU", "English (Australia)"},
    {4105, "en_CA", "English (Canada)"},
    {5129, "en_NZ", "English (New Zealand)"},
    {6153, "en_IE", "English (Ireland)"},
    {1031, "de_DE", "Deutsch (Deutschland)"},
    {2055, "de_CH", "Deutsch (Schweiz)"},
    {3079, "de_AT", "Deutsch (Österreich)"},
    {4103, "de_LU", "Deutsch (Luxemburg)"},
    {5127, "de_LI", "Deutsch (Liechtenstein)"},
    {3082, "es_ES", "Español (España, alfabetización internacional)"},
    {1034, "es_ES@traditional", "Español (España, alfabetización tradicional)"},
    {2058, "es_MX", "Español (México)"},
    {4106, "es_GT", "Español (Guatemala)"},
    {5130, "es_CR", "Español (Costa Rica)"},
    {6154, "es_PA", "Español (Panamá)"},
    {7178, "es_DO", "Español (República Dominicana)"},
    {8202, "es_VE", "Español (Venezuela)"},
    {9226, "es_CO", "Español (Colombia)"},
    {10250, "es_PE", "Español (Perú)"},
    {11274, "es_AR", "Español (Argentina)"},
    {18442, "es_HN", "Español (Honduras)"},
    {19466, "es_NI", "Español (Nicaragua)"},
    {20490, "es_PR", "Español (Puerto Rico)"},
    {1036, "fr_FR", "Français (France)"},
    {2060, "fr_BE", "Français (Belgique)"},
    {3084, "fr_CA", "Français (Canada)"},
    {4108, "fr_CH", "Français (Suisse)"},
    {5132, "fr_LU", "Français (Luxembourg)"},
    {1040, "it_IT", "Italiano (Italia)"},
    {2064, "it_CH", "Italiano (Svizzera)"},
    {1041, "ja_JP", "日本語 (日本)"},
    {1043, "nl_NL", "Nederlands (Nederland)"},
    {2067, "nl_BE", "Nederlands (België)"},
    {1044, "nb_NO", "Norsk bokmål (Norge)"},
    {1044, "no_NO", "Norsk bokmål (Norge)"},
    {2068, "nn_NO", "Norsk nynorsk (Noreg)"},
    {1046, "pt_BR", "Português (Brasil)"},
    {2070, "pt_PT", "Português (Portugal)"},
    {1042, "ko_KR", "한국어 (대한민국)"},
    {1028, "zh_TW", "中文 (繁體,台灣)"},
    {2052, "zh_CN", "中文 (简体,中国)"},
};

// The user's locale for one purpose; empty when the environment says nothing.
std::string_view localeOf(const char* purpose) {
    for (const char* variable : {"LC_ALL", purpose, "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return value;
    }
    return {};
}

}  // namespace

DateOrder userDateOrder() {
    // Languages that write the year first go on with the month.
    constexpr std::string_view monthFirst[] = {"",      "C",     "POSIX", "en_US", "en_PH",
                                               "es_PA", "es_PR", "ja",    "ko",    "zh"};
    const std::string_view locale = localeOf("LC_TIME");
    const std::string_view place = locale.substr(0, locale.find_first_of(".@"));
    for (const std::string_view candidate : monthFirst)
        if (place == candidate || place.substr(0, place.find('_')) == candidate)
            return DateOrder::monthFirst;
    return DateOrder::dayFirst;
}

long userDefaultLanguageId() {
    const std::string_view locale = localeOf("LC_MESSAGES");
    for (const Language& language : languages)
        if (locale == language.locale)
            return language.id;
    const std::string_view place = locale.substr(0, locale.find_first_of(".@"));
    for (const Language& language : languages)
        if (place == language.locale)
            return language.id;
    const std::string_view tongue = place.substr(0, place.find('_'));
    for (const Language& language : languages)
        if (!tongue.empty() && tongue == language.locale.substr(0, language.locale.find('_')))
            return language.id;
    return englishUnitedStates;
}

std::string languageName(long id) {
    for (const Language& language : languages)
        if (language.id == id)
            return language.name;
    return {};
}

}  // namespace platform
