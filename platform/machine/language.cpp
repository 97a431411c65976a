#include "platform/machine/language.h"

#include <cstdlib>
#include <string_view>

namespace platform {

namespace {

struct Language {
    long id;
    std::string_view locale;  // "ll_CC"; the first row of a language serves the language alone
    const char* name;
};

constexpr long englishUnitedStates = 1033;

constexpr Language languages[] = {
    {1033, "en_US", "English (United States)"},
    {2057, "en_GB", "English (United Kingdom)"},
    {3081, "en_AU", "English (Australia)"},
    {4105, "en_CA", "English (Canada)"},
    {5129, "en_NZ", "English (New Zealand)"},
    {6153, "en_IE", "English (Ireland)"},
    {1031, "de_DE", "German (Germany)"},
    {2055, "de_CH", "German (Switzerland)"},
    {3079, "de_AT", "German (Austria)"},
    {4103, "de_LU", "German (Luxembourg)"},
    {5127, "de_LI", "German (Liechtenstein)"},
    {3082, "es_ES", "Spanish (Spain, International Sort)"},
    {1034, "es_ES@traditional", "Spanish (Spain, Traditional Sort)"},
    {2058, "es_MX", "Spanish (Mexico)"},
    {4106, "es_GT", "Spanish (Guatemala)"},
    {5130, "es_CR", "Spanish (Costa Rica)"},
    {6154, "es_PA", "Spanish (Panama)"},
    {7178, "es_DO", "Spanish (Dominican Republic)"},
    {8202, "es_VE", "Spanish (Venezuela)"},
    {9226, "es_CO", "Spanish (Colombia)"},
    {10250, "es_PE", "Spanish (Peru)"},
    {11274, "es_AR", "Spanish (Argentina)"},
    {18442, "es_HN", "Spanish (Honduras)"},
    {19466, "es_NI", "Spanish (Nicaragua)"},
    {20490, "es_PR", "Spanish (Puerto Rico)"},
    {1036, "fr_FR", "French (France)"},
    {2060, "fr_BE", "French (Belgium)"},
    {3084, "fr_CA", "French (Canada)"},
    {4108, "fr_CH", "French (Switzerland)"},
    {5132, "fr_LU", "French (Luxembourg)"},
    {1040, "it_IT", "Italian (Italy)"},
    {2064, "it_CH", "Italian (Switzerland)"},
    {1041, "ja_JP", "Japanese (Japan)"},
    {1043, "nl_NL", "Dutch (Netherlands)"},
    {2067, "nl_BE", "Dutch (Belgium)"},
    {1044, "nb_NO", "Norwegian, Bokmål (Norway)"},
    {1044, "no_NO", "Norwegian, Bokmål (Norway)"},
    {2068, "nn_NO", "Norwegian, Nynorsk (Norway)"},
    {1046, "pt_BR", "Portuguese (Brazil)"},
    {2070, "pt_PT", "Portuguese (Portugal)"},
    {1042, "ko_KR", "Korean (Korea)"},
    {1028, "zh_TW", "Chinese (Traditional, Taiwan)"},
    {2052, "zh_CN", "Chinese (Simplified, China)"},
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
