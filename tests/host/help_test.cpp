#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "core/modLocalize.h"
#include "platform/chmFile.h"

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

TEST(HelpText, TellsOfEveryMessageInTheWordsOfTheStringTable) {
    const auto help = platform::ChmFile::open(LIBRARY_FOLDER "/QuillonService_ENU.chm");
    const std::string boxes = simplified(*help.find("boxes.html"));
    const auto told = [&](long id) {
        const std::string text = simplified(modLocalize::englishString(id));
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
            if (id != 1241 && id != 1242)
                told(id);
    for (const long id : {1176L, 1180L, 1207L, 1252L, 1253L, 1254L, 1255L, 1256L, 1304L})
        told(id);
}

TEST(HelpText, NamesEverySettingMenuEntryAndVariable) {
    const auto help = platform::ChmFile::open(LIBRARY_FOLDER "/QuillonService_ENU.chm");
    const auto names = [&](const char* page, std::initializer_list<long> ids) {
        const std::string text = simplified(*help.find(page));
        for (const long id : ids) {
            std::string name = simplified(modLocalize::englishString(id));
            name.erase(std::remove(name.begin(), name.end(), '&'), name.end());
            EXPECT_NE(text.find(name), std::string::npos) << page << ": " << name;
        }
    };
    names("options.html", {1047, 1096, 1095, 1160, 1315, 1034});
    names("mainWindow.html", {1114, 1115, 1116, 1310, 1117, 1118, 1173, 1172, 1257, 1016, 1014, 1015});
    names("content.html", {1153, 1072, 1154, 1155, 1142, 1156, 1143, 1157, 1201, 1144, 1035, 1036});
    names("devices.html", {1068, 1097, 1098, 1099, 1284, 1285, 1291, 1295, 1296, 1090, 1093});
    names("assignment.html", {1297, 1298});
}

}  // namespace
