// The seven tabs with a recipient's devices, in the order of their types: voice mail, pager, e-mail, SMTP,
// SNMP trap, syslog, failover. The new-recipient dialog and the recipients pane have the same ones; what an
// edit means is theirs to say.
#pragma once

#include "database/recipientRecord.h"
#include "ui/parts/addressList.h"
#include "ui/parts/directoryEntry.h"
#include "ui/widgets/tabRows.h"

class QCheckBox;

namespace ui {

class DeviceTabs : public TabRows {
    Q_OBJECT

  public:
    // Where they stand decides some of the controls' names, and who speaks in the log.
    enum class Place { dialog, pane };
    DeviceTabs(Place place, const SearchDirectory& search, QWidget* parent);

    // Captions and tips. In the dialog the lists have tips of their own.
    void controlInit();
    // Takes the tabs of the kinds that this server does not offer out of sight.
    void hideUnsupportedKinds();
    // Puts tabs and controls behind a control in the order of the Tab key and returns the last of them.
    QWidget* placeBehind(QWidget* before);
    // Adds the addresses that were typed and not added.
    void addTyped();
    // Puts the devices into a record, whose name and state stay.
    void collect(mdlDatabase::RecipientRecord& record) const;

    DirectoryEntry* voiceMail;
    AddressList* pagers;
    DirectoryEntry* email;
    AddressList* smtp;
    QCheckBox* chkSNMPTrapEnabled;
    QCheckBox* chkSyslogEnabled;
    QLabel* lblSyslogAddress;
    QLineEdit* txtSyslogHostAddress;
    QCheckBox* chkFailoverEnabled;
    QLabel* lblFailover;

  signals:
    // A device changed, or may have: any edit but those below.
    void changed();
    // A choice that changes no device.
    void picked();
    void syslogHostChanged();

  private:
    QWidget* switchPage(QCheckBox*& box, const char* name);
    void connectControls();

    Place place_;
};

}  // namespace ui
