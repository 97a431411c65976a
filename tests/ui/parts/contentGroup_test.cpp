#include "ui/parts/contentGroup.h"

#include <QLineEdit>

#include "support/mainWindowFixture.h"
#include "ui/widgets/variableTextBox.h"

namespace {

class ContentOfEvents : public uiTest::MainWindow {
  protected:
    static std::string nodeOf(long key) { return "EventKey-" + std::to_string(key); }
};

// As a save that was cut off leaves an event.
TEST_F(ContentOfEvents, AnEventThatLacksAContentDoesNotGetTheOneOfTheEventBefore) {
    const long event = add("Backup", "17");
    const long other = add("Alarm", "-1");
    const auto without = [&](int type) {
        run("DELETE FROM Contents WHERE EventKey = " + std::to_string(other) +
            " AND ContentType = " + std::to_string(type));
    };
    const auto contents = [&] {
        return rows(
            "SELECT ContentType, ContentAttachment, ContentSubject, ContentNote, ContentPriority "
            "FROM Contents WHERE EventKey = " +
            std::to_string(other) + " ORDER BY ContentType");
    };
    const auto saveOther = [&] {
        clickNode(nodeOf(event));
        clickNode(nodeOf(other));
        QTest::keyClicks(find<QLineEdit>("txtEventTitle"), "x");
        press("cmdEventApply");
    };
    run("UPDATE Contents SET ContentAttachment = 'one.wav', ContentSubject = 'one', ContentNote = 'one', "
        "ContentPriority = 2 WHERE EventKey = " +
        std::to_string(event));
    mdlDatabase::setConfigurationSetting("DefaultEmailBody", "default");
    mdlDatabase::setConfigurationSetting("DefaultEmailSubject", "default");
    open();
    without(3);
    saveOther();
    EXPECT_EQ(contents(),
              (std::vector<std::string>{"1|a.wav|default|default|1", "3|NULL|default|default|1"}));
    without(1);
    saveOther();
    EXPECT_EQ(contents().at(0), "1|QLN_Default_ENU.wav|default|default|1");
    // A priority without a value is not the one of the event before either.
    run("UPDATE Contents SET ContentPriority = NULL WHERE EventKey = " + std::to_string(other));
    saveOther();
    EXPECT_EQ(contents(), (std::vector<std::string>{"1|QLN_Default_ENU.wav|default|default|1",
                                                    "3|NULL|default|default|1"}));

    // What somebody wrote there is this event's.
    without(3);
    clickNode(nodeOf(event));
    clickNode(nodeOf(other));
    EXPECT_EQ(find<ui::VariableTextBox>("rtbEmailSubject")->storedText(), "one") << "left as it was";
    QTest::keyClicks(find<QWidget>("rtbEmailBody"), "my ");
    press("cmdEventApply");
    EXPECT_EQ(contents().at(1), "3|NULL|one|my one|2");
}

}  // namespace
