#include "platform/libraries/chmFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <set>

#include "platform/failure.h"
#include "support/temporaryHost.h"

namespace {

using platform::ChmEntry;
using platform::ChmFile;
using platform::parseSitemap;

std::string builtBytes() {
    std::ifstream stream(HELP_FILE, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The page is in the file, and so is the place in it that the anchor names.
void expectTarget(const ChmFile& help, const std::string& from, const std::string& target) {
    const std::size_t hash = target.find('#');
    const std::string* page = help.find(target.substr(0, hash));
    ASSERT_NE(page, nullptr) << from << " leads to " << target;
    if (hash != std::string::npos) {
        EXPECT_NE(page->find("<a name=\"" + target.substr(hash + 1) + "\">"), std::string::npos)
            << from << " leads to " << target;
    }
}

TEST(HelpFile, TheBuiltFileIsWholeAndEveryWayInItLeadsSomewhere) {
    const ChmFile help = ChmFile::open(HELP_FILE);
    EXPECT_EQ(help.title(), "Quillon Service Help");
    EXPECT_EQ(help.defaultPage(), "welcome.html");
    const std::vector<std::string> pages = help.pages();
    EXPECT_GE(pages.size(), 10u);

    std::set<std::string> listed;
    const std::function<void(const std::vector<ChmEntry>&)> walk = [&](const std::vector<ChmEntry>& entries) {
        for (const ChmEntry& entry : entries) {
            if (!entry.page.empty()) {
                expectTarget(help, "contents", entry.page);
                listed.insert(entry.page.substr(0, entry.page.find('#')));
            }
            walk(entry.children);
        }
    };
    walk(help.contents());
    EXPECT_EQ(listed, std::set<std::string>(pages.begin(), pages.end()));
    EXPECT_GE(help.index().size(), 30u);
    for (const ChmEntry& entry : help.index())
        expectTarget(help, "index, " + entry.title, entry.page);

    std::set<std::string> numbered;
    for (long topic = 1; topic <= static_cast<long>(pages.size()); ++topic)
        numbered.insert(help.pageOfTopic(topic).value_or(""));
    EXPECT_EQ(numbered, listed);
    EXPECT_EQ(help.pageOfTopic(1000), std::nullopt);

    for (const std::string& page : pages) {
        const std::string& text = *help.find(page);
        EXPECT_NE(text.find("</html>"), std::string::npos) << page;
        for (std::size_t at = text.find("href=\""); at != std::string::npos;
             at = text.find("href=\"", at + 1)) {
            const std::string target = text.substr(at + 6, text.find('"', at + 6) - at - 6);
            expectTarget(help, page, target.starts_with('#') ? page + target : target);
        }
    }
    // A message box sends the administrator to the section of exactly this title.
    EXPECT_NE(
        help.find("importFromEventViewer.html")->find("<h1>How to import events from the Event Viewer</h1>"),
        std::string::npos);
}

TEST(HelpFile, NamesAreFoundWithoutRegardToCaseAndSlash) {
    const ChmFile help = ChmFile::open(HELP_FILE);
    ASSERT_NE(help.find("welcome.html"), nullptr);
    EXPECT_EQ(help.find("/WELCOME.html"), help.find("welcome.html"));
    EXPECT_EQ(help.find("../welcome.html"), nullptr);
    EXPECT_EQ(help.find(""), nullptr);
}

class MalformedHelp : public testing::Test {
  protected:
    // Why the file with these bytes is refused; empty when it opens.
    std::string refusal(const std::string& bytes) {
        const auto file = host.root() / "QuillonService_ENU.chm";
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
        try {
            ChmFile::open(file);
        } catch (const platform::Failure& failure) {
            EXPECT_EQ(failure.number(), platform::pathFileAccessError);
            return failure.description();
        }
        return {};
    }

    std::string withNumber(std::size_t offset, std::uint32_t value) {
        std::string bytes = good;
        std::memcpy(bytes.data() + offset, &value, sizeof value);
        return bytes;
    }

    support::TemporaryHost host;
    const std::string good = builtBytes();
    const std::size_t directory = good.find("ITSP");
    const std::size_t block = good.find("PMGL");
    const std::size_t control = good.find("LZXC");
};

TEST_F(MalformedHelp, IsRefusedWithItsReason) {
    ASSERT_EQ(refusal(good), "");
    const struct {
        const char* reason;
        std::string bytes;
    } cases[] = {
        {"not a compiled help file", ""},
        {"not a compiled help file", "<html>no help</html>"},
        {"the file is cut short", good.substr(0, 6)},
        {"the directory reaches beyond its end", good.substr(0, 200)},
        {"reaches beyond its end", good.substr(0, good.size() / 2)},
        {"a version of the format", withNumber(4, 9)},
        {"the data lie beyond the end", withNumber(0x58, 0x7FFFFFFF)},
        {"measures cannot be", withNumber(directory + 0x10, 0)},
        {"measures cannot be", withNumber(directory + 0x2C, 0x00FFFFFF)},
        {"a block that is not there", withNumber(directory + 0x20, 77)},
        {"runs in circles", withNumber(block + 0x10, 0)},
        {"more free space than room", withNumber(block + 4, 0xFFFFFFF0)},
        {"window cannot be", withNumber(control + 0xC, 0)},
        {"window cannot be", withNumber(control + 0x10, 0)},
        {"compression that is not known", withNumber(control, 0)},
    };
    for (const auto& [reason, bytes] : cases)
        EXPECT_NE(refusal(bytes).find(reason), std::string::npos) << reason << "; said: " << refusal(bytes);
    EXPECT_THROW(ChmFile::open(host.root() / "missing.chm"), platform::Failure);
}

TEST_F(MalformedHelp, DamageAnywhereEitherOpensOrIsRefused) {
    std::mt19937 random(20261116);
    int refused = 0;
    for (int i = 0; i < 400; ++i) {
        std::string bytes = good;
        for (int changes = 0; changes < 3; ++changes) {
            // Half of the damage goes where the structure is.
            const std::size_t reach = i % 2 ? bytes.size() : bytes.size() / 4;
            bytes[random() % reach] = static_cast<char>(random());
        }
        refused += !refusal(bytes).empty();
    }
    EXPECT_GT(refused, 100);
}

TEST(Sitemap, NestsDecodesAndSurvivesBrokenLists) {
    const auto entry = [](const std::string& title, const std::string& page) {
        return "<LI><OBJECT type=\"text/sitemap\"><param name=\"Name\" value=\"" + title +
               "\"><param name=\"Local\" value=\"" + page + "\"></OBJECT>";
    };
    const auto tree =
        parseSitemap("<!DOCTYPE HTML><UL>" + entry("A &amp; B &#233; &odd;", "a.html#x") + "<ul>" +
                     entry("inner", "b.html") + "</ul>" + entry("last", "") + "</UL></BODY>");
    ASSERT_EQ(tree.size(), 2u);
    EXPECT_EQ(tree[0].title, "A & B é &odd;");
    EXPECT_EQ(tree[0].page, "a.html#x");
    ASSERT_EQ(tree[0].children.size(), 1u);
    EXPECT_EQ(tree[0].children[0].title, "inner");
    EXPECT_EQ(tree[1].title, "last");

    EXPECT_TRUE(parseSitemap("").empty());
    EXPECT_TRUE(parseSitemap("</ul></ul></object><param name=\"Name\" value=\"stray\">").empty());
    EXPECT_TRUE(parseSitemap("<object type=\"text/sitemap\"><param name=\"Name\" value=\"open").empty());
    std::string deep;
    for (int i = 0; i < 2000; ++i)
        deep += "<ul>" + entry("x", "x.html");
    EXPECT_EQ(parseSitemap(deep).size(), 1u);
}

}  // namespace
