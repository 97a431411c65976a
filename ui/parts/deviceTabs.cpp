#include "ui/parts/deviceTabs.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "core/state.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/widgets/entryList.h"

namespace ui {

namespace {

constexpr int tabsPerRow = 4;
enum Tab { pagerTab = 1, snmpTab = 4, failoverTab = 6 };

const char* moduleOf(DeviceTabs::Place place) {
    return place == DeviceTabs::Place::dialog ? "dlgRecipient" : "frmMain";
}

DirectoryEntry::Names voiceMailNames(DeviceTabs::Place place) {
    // Voice mail reaches more kinds of subscriber than e-mail does.
    return {moduleOf(place), "VoiceMail", place == DeviceTabs::Place::dialog ? "Label1" : "Label3",
            "frameVoiceMailRecipient", "(1,2,3,5,7,8)"};
}

DirectoryEntry::Names emailNames(DeviceTabs::Place place) {
    return {moduleOf(place), "Email", "lblType", "frameEMailRecipient", "(1,2,3)"};
}

AddressList::Names pagerNames(DeviceTabs::Place place) {
    const bool dialog = place == DeviceTabs::Place::dialog;
    return {moduleOf(place),   "lblNewPagerNumber",
            "txtPagerNumber",  "cmdAddToPagerList",
            "lblPagerNumbers", dialog ? "lstPagerNumbers" : "tvPagerNumbers",
            "cmdDeletePager",  dialog ? "lstPagerNumbers_Click" : "tvPagerNumbers_NodeClick",
            isPagerNumber};
}

AddressList::Names smtpNames(DeviceTabs::Place place) {
    const bool dialog = place == DeviceTabs::Place::dialog;
    return {moduleOf(place),        "lblNewSMTPAddress",
            "txtSMTPAddress",       "cmdAddToSMTPList",
            "lblSMTPAddresses",     dialog ? "lstSMTPAddresses" : "tvSMTPAddresses",
            "cmdDeleteSMTPAddress", dialog ? "lstSMTPAddresses_Click" : "tvSMTPAddresses_NodeClick",
            isSmtpAddress};
}

}  // namespace

DeviceTabs::DeviceTabs(Place place, const SearchDirectory& search, QWidget* parent)
    : TabRows(tabsPerRow, parent), place_(place) {
    setObjectName(place == Place::dialog ? "sstabDevices" : "sstabRecipientDevices");
    voiceMail = new DirectoryEntry(voiceMailNames(place), search, this);
    pagers = new AddressList(pagerNames(place), this);
    email = new DirectoryEntry(emailNames(place), search, this);
    smtp = new AddressList(smtpNames(place), this);
    for (QWidget* page : {static_cast<QWidget*>(voiceMail), static_cast<QWidget*>(pagers),
                          static_cast<QWidget*>(email), static_cast<QWidget*>(smtp)})
        addTab(page);
    addTab(switchPage(chkSNMPTrapEnabled, "chkSNMPTrapEnabled"));

    QWidget* syslog = switchPage(chkSyslogEnabled, "chkSyslogEnabled");
    lblSyslogAddress = makeControl<QLabel>(syslog, "lblSyslogAddress");
    txtSyslogHostAddress = makeControl<QLineEdit>(syslog, "txtSyslogHostAddress");
    lblSyslogAddress->setBuddy(txtSyslogHostAddress);
    auto* below = static_cast<QVBoxLayout*>(syslog->layout());
    below->insertWidget(1, lblSyslogAddress);
    below->insertWidget(2, txtSyslogHostAddress);
    addTab(syslog);

    QWidget* failover = switchPage(chkFailoverEnabled, "chkFailoverEnabled");
    lblFailover = makeControl<QLabel>(failover, "lblFailover");
    lblFailover->setWordWrap(true);
    static_cast<QVBoxLayout*>(failover->layout())->insertWidget(1, lblFailover);
    addTab(failover);
    connectControls();
}

// A page that begins with a check box.
QWidget* DeviceTabs::switchPage(QCheckBox*& box, const char* name) {
    auto* page = new QWidget(this);
    box = makeControl<QCheckBox>(page, name);
    auto* rows = new QVBoxLayout(page);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(box);
    rows->addStretch();
    return page;
}

void DeviceTabs::connectControls() {
    for (DirectoryEntry* entry : {voiceMail, email}) {
        connect(entry, &DirectoryEntry::changed, this, &DeviceTabs::changed);
        connect(entry, &DirectoryEntry::picked, this, &DeviceTabs::picked);
    }
    for (AddressList* addresses : {pagers, smtp}) {
        connect(addresses, &AddressList::changed, this, &DeviceTabs::changed);
        connect(addresses, &AddressList::picked, this, &DeviceTabs::picked);
    }
    for (QCheckBox* box : {chkSNMPTrapEnabled, chkSyslogEnabled, chkFailoverEnabled})
        connect(box, &QCheckBox::toggled, this, [this, box] {
            core::procedure(moduleOf(place_), toUtf8(box->objectName()) + "_Click",
                            [&](core::Frame&) { emit changed(); });
        });
    connect(txtSyslogHostAddress, &QLineEdit::textChanged, this, &DeviceTabs::syslogHostChanged);
}

void DeviceTabs::controlInit() {
    constexpr long captions[] = {1068, 1097, 1098, 1099, 1284, 1285, 1291};
    for (int i = 0; i < count(); ++i)
        setTabText(i, text(captions[i]));
    voiceMail->controlInit(text(1068));
    pagers->controlInit({1102, 1078, 1083, 1071});
    email->controlInit(text(1098));
    smtp->controlInit({1081, 1077, 1082, 1070});
    if (place_ == Place::dialog) {
        pagers->list->setToolTip(text(1079));
        smtp->list->setToolTip(text(1076));
    }
    chkSNMPTrapEnabled->setText(text(1287));
    chkSyslogEnabled->setText(text(1288));
    lblSyslogAddress->setText(text(1289));
    chkFailoverEnabled->setText(text(1290));
    lblFailover->setText(text(1295) + "\n" + text(1296));
    nameByBuddy(*this);
}

void DeviceTabs::hideUnsupportedKinds() {
    setTabVisible(pagerTab, core::gPagerSupported);
    setTabVisible(snmpTab, core::gSnmpSupported);
    setTabVisible(failoverTab, core::gFailoverSupported);
}

QWidget* DeviceTabs::placeBehind(QWidget* before) {
    before = placeTabsBehind(before);
    const auto place = [&](std::initializer_list<QWidget*> controls) {
        for (QWidget* control : controls) {
            setTabOrder(before, control);
            before = control;
        }
    };
    const auto placeEntry = [&](const DirectoryEntry& entry) {
        place({entry.optionType[0], entry.optionType[1], entry.txtName, entry.cmdSelect, entry.cmdClear});
    };
    const auto placeList = [&](const AddressList& addresses) {
        place({addresses.txtNew, addresses.cmdAdd, addresses.list, addresses.cmdDelete});
    };
    placeEntry(*voiceMail);
    placeList(*pagers);
    placeEntry(*email);
    placeList(*smtp);
    place({chkSNMPTrapEnabled, chkSyslogEnabled, txtSyslogHostAddress, chkFailoverEnabled});
    return before;
}

void DeviceTabs::addTyped() {
    for (AddressList* addresses : {pagers, smtp})
        addresses->addTyped();
}

void DeviceTabs::collect(mdlDatabase::RecipientRecord& record) const {
    record.voiceMailDirectoryId = voiceMail->directoryId();
    record.emailDirectoryId = email->directoryId();
    record.pagerNumbers = pagers->entries();
    record.smtpAddresses = smtp->entries();
    record.snmpTrapEnabled = chkSNMPTrapEnabled->isChecked();
    record.syslogEnabled = chkSyslogEnabled->isChecked();
    record.syslogHostAddress = toUtf8(txtSyslogHostAddress->text());
    record.failoverEnabled = chkFailoverEnabled->isChecked();
}

}  // namespace ui
