// The help files of all languages: whole, with the words of the string tables, found by the user's language.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "core/mdlHTMLHelp.h"
#include "core/modLocalize.h"
#include "platform/files/files.h"
#include "platform/libraries/chmFile.h"
#include "platform/libraries/stringLibrary.h"
#include "support/temporaryHost.h"

namespace {

// The text with every run of white space as one blank.
std::string simplified(const std::string& text) {
    std::string result;
    for (const char c : text)
        if (!std::isspace(static_cast<unsigned char>(c)))
            result += c;
        else if (!result.empty() && result.back() != ' ')
            result += ' ';
    while (!result.empty() && result.back() == ' ')
        result.pop_back();
    return result;
}

std::string fileName(const std::string& code) {
    return LIBRARY_FOLDER "/QuillonService_" + code + ".chm";
}

void collectPages(const std::vector<platform::ChmEntry>& entries, std::vector<std::string>& pages) {
    for (const platform::ChmEntry& entry : entries) {
        pages.push_back(entry.page);
        collectPages(entry.children, pages);
    }
}

std::vector<std::string> pagesOf(const std::vector<platform::ChmEntry>& entries) {
    std::vector<std::string> pages;
    collectPages(entries, pages);
    return pages;
}

// All that a pattern's first group finds in a page.
std::vector<std::string> found(const std::string& text, const char* pattern) {
    const std::regex regex(pattern);
    std::vector<std::string> result;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        result.push_back((*match)[1]);
    return result;
}

class HelpText : public ::testing::TestWithParam<const char*> {
  protected:
    // The string that the console shows in the language of the help.
    std::string caption(long id) const {
        const std::string own = library ? library->loadString(static_cast<std::uint32_t>(id)) : std::string();
        return own.empty() ? std::string(modLocalize::englishString(id)) : own;
    }
    std::string page(const std::string& name) const { return simplified(*help.find(name)); }
    void expectNames(const char* name, std::initializer_list<long> ids) const {
        const std::string text = page(name);
        for (const long id : ids) {
            std::string word = simplified(caption(id));
            word.erase(std::remove(word.begin(), word.end(), '&'), word.end());
            EXPECT_FALSE(word.empty()) << id;
            EXPECT_NE(text.find(word), std::string::npos) << name << ": " << word;
        }
    }

    const platform::ChmFile help = platform::ChmFile::open(fileName(GetParam()));
    const std::optional<platform::StringLibrary> library =
        platform::StringLibrary::open(LIBRARY_FOLDER "/QLNbrandingres_" + std::string(GetParam()) + ".dll");
};

TEST_P(HelpText, TellsOfEveryMessageInTheWordsOfTheStringTable) {
    const std::string boxes = page("boxes.html");
    const auto told = [&](long id) {
        const std::string text = simplified(caption(id));
        EXPECT_FALSE(text.empty()) << id;
        // An ending blank or colon joins what differs from case to case.
        EXPECT_NE(boxes.find(text.substr(text.front() == ' ' ? 1 : 0)), std::string::npos)
            << id << ": " << text;
    };
    for (const auto& [first, last] : {std::pair{1134L, 1139L},
                                      {1158L, 1159L},
                                      {1162L, 1164L},
                                      {1166L, 1167L},
                                      {1187L, 1187L},
                                      {1189L, 1192L},
                                      {1203L, 1204L},
                                      {1221L, 1235L},
                                      {1238L, 1240L},
                                      {1243L, 1251L},
                                      {1259L, 1282L},
                                      {1297L, 1301L}})
        for (long id = first; id <= last; ++id)
            told(id);
    for (const long id : {1176L, 1180L, 1207L, 1252L, 1253L, 1254L, 1255L, 1256L, 1304L})
        told(id);
}

TEST_P(HelpText, NamesEverySettingMenuEntryAndVariable) {
    expectNames("options.html", {1047, 1096, 1095, 1160, 1315, 1034, 1094, 1046});
    expectNames("mainWindow.html", {1030, 1031, 1311, 1114, 1115, 1116, 1310, 1117, 1118, 1173, 1172, 1257,
                                    1016, 1014, 1015, 1004});
    expectNames("content.html", {1153, 1072, 1154, 1155, 1142, 1156, 1143, 1157, 1201, 1144, 1035, 1036});
    expectNames("devices.html", {1068, 1097, 1098, 1099, 1284, 1285, 1291, 1295, 1296, 1090, 1093,
                                 1073, 1074, 1075, 1069, 1102, 1081, 1287, 1288, 1289, 1084, 1258});
    expectNames("assignment.html", {1297, 1298, 1110, 1109});
    expectNames("exclusions.html", {1312, 1313, 1067, 1066, 1065, 1107, 1307});
    expectNames("recipients.html", {1168, 1169, 1101});
    expectNames("monitoredEvents.html", {1018, 1171, 1170, 1145});
    expectNames("importFromEventViewer.html", {1055, 1057});
    expectNames("legacyImport.html", {1172, 1178});
    expectNames("testNotification.html", {1236});
}

TEST_P(HelpText, HasEveryPageThatTheEnglishOneHasAndNoLinkIntoNothing) {
    const platform::ChmFile english = platform::ChmFile::open(fileName("ENU"));
    EXPECT_EQ(help.pages(), english.pages());
    EXPECT_EQ(pagesOf(help.contents()), pagesOf(english.contents()));
    std::vector<std::string> index = pagesOf(help.index()), englishIndex = pagesOf(english.index());
    std::ranges::sort(index);
    std::ranges::sort(englishIndex);
    EXPECT_EQ(index, englishIndex);
    for (long topic = 1; topic <= 17; ++topic)
        EXPECT_EQ(help.pageOfTopic(topic), english.pageOfTopic(topic)) << topic;

    std::set<std::string> targets;
    for (const std::string& name : help.pages()) {
        targets.insert(name);
        for (const std::string& anchor : found(*help.find(name), "<a name=\"([^\"]+)\""))
            targets.insert(name + "#" + anchor);
    }
    for (const std::string& name : help.pages()) {
        std::vector<std::string> links = found(*help.find(name), "href=\"([^\"]+\\.html[^\"]*|#[^\"]*)\"");
        EXPECT_EQ(links, found(*english.find(name), "href=\"([^\"]+\\.html[^\"]*|#[^\"]*)\"")) << name;
        for (const std::string& link : links)
            EXPECT_TRUE(targets.contains(link.starts_with('#') ? name + link : link)) << name << ": " << link;
    }
    for (const auto& entries : {help.contents(), help.index()})
        for (const std::string& target : pagesOf(entries))
            EXPECT_TRUE(target.empty() || targets.contains(target)) << target;
}

// The message that no event is on the clipboard names the page that tells how one gets there.
TEST_P(HelpText, HasThePageThatAMessageNames) {
    const std::vector<std::string> title = found(page("importFromEventViewer.html"), "<h1>([^<]+)</h1>");
    ASSERT_EQ(title.size(), 1U);
    EXPECT_NE(simplified(caption(1203)).find(title[0]), std::string::npos) << title[0];
}

// The compiler would write the names of the folder that it works in.
TEST_P(HelpText, TellsNothingOfTheMachineThatBuiltIt) {
    const std::string folder = std::filesystem::path(LIBRARY_FOLDER).parent_path().parent_path().string();
    for (const char* table : {"#STRINGS", "#SYSTEM", "#TOPICS", "#URLSTR"}) {
        const std::string* bytes = help.find(table);
        ASSERT_NE(bytes, nullptr) << table;
        EXPECT_EQ(bytes->find(folder), std::string::npos) << table;
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, HelpText, ::testing::Values("ENU", "DEU", "FRA"),
                         [](const auto& language) { return std::string(language.param); });

TEST(HelpFile, IsThatOfTheUsersLanguageAndEnglishWithoutOne) {
    const support::TemporaryHost host;
    for (const char* code : {"ENU", "DEU", "FRA"})
        platform::files::copyFile(fileName(code),
                                  host.programFolder() / ("QuillonService_" + std::string(code) + ".chm"));
    const char* const before = getenv("LC_ALL");
    const std::string kept = before ? before : "";
    for (const auto& [locale, title] : {std::pair{"de_DE.UTF-8", "Hilfe zum Quillon-Dienst"},
                                        {"fr_FR.UTF-8", "Aide du service Quillon"},
                                        {"es_ES.UTF-8", "Quillon Service Help"},
                                        {"en_US.UTF-8", "Quillon Service Help"}}) {
        setenv("LC_ALL", locale, 1);
        EXPECT_EQ(platform::ChmFile::open(mdlHTMLHelp::getHelpFileName()).title(), title) << locale;
    }
    before ? setenv("LC_ALL", kept.c_str(), 1) : unsetenv("LC_ALL");
}

}  // namespace
