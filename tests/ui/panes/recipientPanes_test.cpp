// The pane of one recipient, driven as a person does.
#include "recipientPanesFixture.h"

namespace {

using namespace uiTest;

TEST_F(RecipientPanes, ShowsEveryKindAndWhatTheNextOneLeavesStanding) {
    core::gFailoverSupported = core::gPagerSupported = true;
    show(1);
    EXPECT_EQ(textOf("txtRecipientName"), "Ana");
    EXPECT_TRUE(in<QCheckBox>("chkRecipientActive")->isChecked());
    EXPECT_TRUE(in<QRadioButton>("optionVoiceMailType_0")->isChecked());
    EXPECT_EQ(textOf("txtVoiceMail") + textOf("txtVoiceMailDirectoryId"), "Ana Aid1");
    EXPECT_EQ(textOf("txtEmail") + textOf("txtEmailDirectoryId"), "Ana Eid2");
    EXPECT_EQ(in<ui::EntryList>("tvSMTPAddresses")->count(), 2);
    EXPECT_EQ(in<ui::EntryList>("tvSMTPAddresses")->entryKey(1), "DeviceKey:14");
    for (const char* box : {"chkSNMPTrapEnabled", "chkSyslogEnabled", "chkFailoverEnabled"})
        EXPECT_TRUE(in<QCheckBox>(box)->isChecked()) << box;
    EXPECT_EQ(textOf("txtSyslogHostAddress"), "host");
    EXPECT_EQ(linesOf("tvRecipientDevices"),
              (Lines{"Voice mail", " Ana A", "E-mail", " Ana E", "SMTP Address", " a@b", " c@d", "SNMP Trap",
                     " SNMP TRAP", "Syslog", " host", "Failover", " Failover"}));
    EXPECT_FALSE(pane->isChanged());
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    auto* devices = in<ui::KeyedTree>("tvRecipientDevices");
    QTest::mouseClick(devices->viewport(), Qt::LeftButton, {}, uiTest::placeOf(*devices, "DeviceKey:16"));
    EXPECT_EQ(tabs->currentIndex(), 5);

    show(3);
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_FALSE(in<QCheckBox>("chkRecipientActive")->isChecked());
    EXPECT_EQ(textOf("txtVoiceMail") + textOf("txtVoiceMailDirectoryId"), "");
    EXPECT_TRUE(enabled("cmdClearVoiceMail")) << "stays although there is nothing to clear";
    EXPECT_TRUE(in<QRadioButton>("optionEmailType_1")->isChecked());
    EXPECT_EQ(textOf("txtEmail"), "Everybody");
    EXPECT_EQ(in<ui::EntryList>("tvPagerNumbers")->count(), 2);
    EXPECT_EQ(in<ui::EntryList>("tvSMTPAddresses")->count(), 0);
    EXPECT_FALSE(in<QCheckBox>("chkSyslogEnabled")->isChecked());
    EXPECT_EQ(textOf("txtSyslogHostAddress"), "host") << "of the recipient before";
    EXPECT_FALSE(pane->isChanged());

    show(1);
    show(2);
    EXPECT_EQ(textOf("txtRecipientName"), "Ben");
    EXPECT_TRUE(in<QCheckBox>("chkRecipientActive")->isChecked());
    for (const char* box : {"chkSNMPTrapEnabled", "chkSyslogEnabled", "chkFailoverEnabled"})
        EXPECT_FALSE(in<QCheckBox>(box)->isChecked()) << box;
    EXPECT_EQ(textOf("txtEmail"), "");
    EXPECT_EQ(linesOf("tvRecipientDevices"), Lines{});
    EXPECT_FALSE(pane->isChanged());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(RecipientPanes, KindsThatAreNotOfferedAreLeftOutOfTheDevices) {
    core::gSnmpSupported = false;
    show(1);
    EXPECT_EQ(linesOf("tvRecipientDevices"), (Lines{"Voice mail", " Ana A", "E-mail", " Ana E",
                                                    "SMTP Address", " a@b", " c@d", "Syslog", " host"}));
    for (int tab = 0; tab < tabs->count(); ++tab)
        EXPECT_EQ(tabs->isTabVisible(tab), tab != 1 && tab != 4 && tab != 6) << tab;
    EXPECT_EQ(host.countInLog("ERROR"), 0);

    run("DELETE FROM AddressDetails WHERE DeviceKey < 15; DELETE FROM Device WHERE DeviceKey < 15");
    show(1);
    EXPECT_EQ(linesOf("tvRecipientDevices"), (Lines{"Syslog", " host"}));
    EXPECT_EQ(host.countInLog("ERROR", "displayDevicesForRecipient", "Err.Number = 424"), 1);
}

TEST_F(RecipientPanes, EveryEditCountsAsAChange) {
    core::gFailoverSupported = core::gPagerSupported = true;
    show(3);
    const std::pair<const char*, std::function<void()>> edits[] = {
        {"name", [&] { type("txtRecipientName", "Cyr"); }},
        {"active", [&] { push("chkRecipientActive"); }},
        {"pager", [&] { type("txtPagerNumber", "1"); }},
        {"pager added", [&] { push("cmdAddToPagerList"); }},
        {"smtp", [&] { type("txtSMTPAddress", "x"); }},
        {"snmp", [&] { push("chkSNMPTrapEnabled"); }},
        {"syslog", [&] { push("chkSyslogEnabled"); }},
        {"syslog host", [&] { type("txtSyslogHostAddress", "h"); }},
        {"failover", [&] { push("chkFailoverEnabled"); }},
        {"cleared", [&] { push("cmdClearEmail"); }},
        {"kind", [&] { push("optionVoiceMailType_1"); }},
    };
    for (const auto& [what, edit] : edits) {
        pane->discard();
        in<QWidget>("cmdRecipientApply")->setEnabled(false);
        edit();
        EXPECT_TRUE(pane->isChanged()) << what;
        EXPECT_TRUE(enabled("cmdRecipientApply")) << what;
    }
    EXPECT_TRUE(enabled("cmdSelectVoiceMail"));
    EXPECT_TRUE(enabled("cmdSelectEmail"));
    EXPECT_FALSE(enabled("cmdClearEmail"));

    type("txtRecipientName", "");
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    push("chkRecipientActive");
    EXPECT_TRUE(enabled("cmdRecipientApply")) << "nobody else looks at the name";
}

TEST_F(RecipientPanes, ApplyStoresTheEditsAndKeepsTheDevicesThatStay) {
    core::gPagerSupported = true;
    openDirectory();
    show(3);
    clickEntry("tvPagerNumbers", 0);
    EXPECT_EQ(textOf("txtPagerNumber"), "555");
    type("txtPagerNumber", "777");
    push("cmdAddToPagerList");
    clickEntry("tvPagerNumbers", 1);
    push("cmdDeletePager");
    EXPECT_FALSE(enabled("cmdDeletePager"));
    EXPECT_EQ(textOf("txtPagerNumber"), "556") << "the box keeps its text";
    push("cmdAddToPagerList");
    type("txtRecipientName", "Cyrus");
    push("chkRecipientActive");
    push("chkSyslogEnabled");
    push("cmdRecipientApply");
    EXPECT_FALSE(pane->isChanged());
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:3");
    EXPECT_EQ(tree->nodeText("RecipientKey:3"), "Cyrus");
    EXPECT_EQ(active(3), "-1");
    const std::string devices = "SELECT DeviceType, DeviceAddress FROM Device WHERE DeviceKey";
    EXPECT_EQ(value(devices + " = 31"), "2|777");
    EXPECT_EQ(rows(devices + " > 31 ORDER BY 1, 2"), (Lines{"2|556", "3|id3", "6|"}))
        << "a syslog device without a host may be stored";
    EXPECT_EQ(value("SELECT Count(*) FROM AddressDetails WHERE DisplayName LIKE '777%'"), "1");
    EXPECT_EQ(linesOf("tvRecipientDevices").at(0), "Pager");
    EXPECT_EQ(linesOf("tvRecipientDevices").at(1), " 777") << "the pane shows what is stored";
}

TEST_F(RecipientPanes, LeavingAsksWhatBecomesOfTheEdits) {
    openDirectory();
    const auto name = [&] { return value("SELECT RecipientName FROM Recipients WHERE RecipientKey = 1"); };
    show(1);
    clickNode("RecipientKey:1");
    type("txtRecipientName", "Anna");
    prompts.expect(saveRecipientQuestion, BoxAnswer::cancel);
    clickNode("keyRecipients");
    EXPECT_EQ(visiblePane(), 3);
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:1");
    EXPECT_EQ(textOf("txtRecipientName"), "Anna");
    prompts.expect(saveRecipientQuestion, BoxAnswer::no);
    clickNode("keyRecipients");
    EXPECT_EQ(visiblePane(), 2);
    EXPECT_EQ(name(), "Ana");
    clickNode("RecipientKey:1");
    EXPECT_EQ(textOf("txtRecipientName"), "Ana");
    type("txtRecipientName", "Anna");
    prompts.expect(saveRecipientQuestion, BoxAnswer::yes);
    clickNode("RecipientKey:2");
    EXPECT_EQ(name(), "Anna");
    EXPECT_EQ(textOf("txtRecipientName"), "Ben");
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    EXPECT_TRUE(prompts.finished());
}

TEST_F(RecipientPanes, CancelledSearchIsAChangeAndSearchAfterClearIsForLists) {
    openDirectory();
    show(3);
    push("optionEmailType_0");
    push("optionEmailType_1");
    pane->discard();
    in<QWidget>("cmdRecipientApply")->setEnabled(false);
    script.expect("dlgSelect", [](QWidget& search) { search.close(); });
    push("cmdSelectEmail");
    EXPECT_TRUE(pane->isChanged());
    EXPECT_TRUE(enabled("cmdRecipientApply"));
    EXPECT_EQ(textOf("txtEmail"), "") << "the other kind took the entry";
    EXPECT_TRUE(script.finished());
}

TEST_F(RecipientPanes, EventsOfARecipientLeadToTheEvent) {
    const std::string all = std::to_string(add("Backup", "-1", "nightly"));
    const std::string one = std::to_string(add("Alarm", "17", "other"));
    run("INSERT INTO EventDevice VALUES(" + all + ", 11, -1), (" + all + ", 12, -1), (" + one +
        ", 13, 0), (" + std::to_string(core::gIgnoreEventKey) + ", 11, -1)");
    show(1);
    Lines events = linesOf("tvEventsMonitored");
    std::sort(events.begin(), events.end());
    EXPECT_EQ(events, (Lines{"Alarm (17)", "Backup (All)"}));
    auto* monitored = in<ui::KeyedTree>("tvEventsMonitored");
    monitored->select(monitored->keyAt(1));
    QTest::keyClick(monitored, Qt::Key_Down);
    EXPECT_EQ(visiblePane(), 3) << "keys only move";
    QTest::keyClick(monitored, Qt::Key_Return);
    EXPECT_EQ(tree->selectedKey(), "EventKey-" + std::string(monitored->keyAt(2)).substr(9));
    show(1);
    const QPoint place = uiTest::placeOf(*monitored, "EventKey:" + all);
    QTest::mouseMove(monitored->viewport(), place);
    EXPECT_EQ(monitored->toolTip(), "nightly");
    QTest::mouseClick(monitored->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(tree->selectedKey(), "EventKey-" + all);
    EXPECT_EQ(visiblePane(), 1);
}

TEST_F(RecipientPanes, TestUsesWhatIsStoredAfterItsQuestion) {
    support::ManualClock clock;
    const std::string hidden =
        "SELECT Count(*) FROM EventDevice WHERE EventKey = " + std::to_string(core::gIgnoreEventKey);
    run("DELETE FROM DeviceRecipient WHERE DeviceKey = 17");  // failover has a question of its own
    show(1);
    type("txtRecipientName", "");
    prompts.expect(testQuestion, BoxAnswer::no);
    push("cmdTestNotification");
    EXPECT_EQ(value(hidden), "0");
    prompts.expect(testQuestion, BoxAnswer::yes);
    push("cmdTestNotification");
    EXPECT_EQ(value(hidden), "6");
    EXPECT_EQ(platform::readEvents("Application").size(), 1U);
    EXPECT_TRUE(pane->isChanged());
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients WHERE RecipientKey = 1"), "Ana");
    pane->discard();
    core::gIgnoreEventKey = -1;
    show(2);
    EXPECT_FALSE(enabled("cmdTestNotification"));
    show(1);
    EXPECT_FALSE(enabled("cmdTestNotification"));
}

}  // namespace
