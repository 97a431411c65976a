// Pane 3: one recipient for editing, his devices, and the events that he is notified of. It is filled in a
// fixed order: filling a control raises the same handlers as a person's change, and the flag that they set is
// cleared last.
#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "core/procedure.h"
#include "database/recipientRecord.h"
#include "platform/ado/ado.h"
#include "ui/panes/editingPane.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {
class AddressList;
class DeviceTabs;
class DirectoryEntry;
class KeyedTree;
}  // namespace ui

class paneRecipientDetails : public QWidget, public EditingPane {
    Q_OBJECT

  public:
    explicit paneRecipientDetails(QWidget* parent);

    // Fills the pane for a recipient; it holds no unsaved edits then.
    Filled displayRecipient(long recipientKey);
    void displayMonitoredEventsForRecipient(long recipientKey);
    void displayDevicesForRecipient(long recipientKey);
    // Takes the tabs of the kinds that this server does not offer out of sight.
    void hideUnsupportedKinds();
    // Shows the names of the address details anew, in the trees and for the entries of the directory. Unsaved
    // edits stay.
    void refillNames();
    void controlInit();

    std::optional<long> shownKey() const override { return shownKey_; }
    bool isChanged() const override { return recipientChanged_; }
    void save() override;
    void discard() override { recipientChanged_ = false; }
    void blank() override;

  signals:
    // The recipient was written: the tree, and with it this pane, are out of date.
    void recipientSaved(long recipientKey);
    void eventWanted(long eventKey);

  private:
    void createControls();
    void buildLayout();
    void connectControls();
    // `handler` is the name in the log of what noticed the change.
    void noteChange(const char* handler);
    void markChanged();

    void showStoredRecipient(core::Frame& frame, const platform::Recordset& row);
    void showStoredDevices(core::Frame& frame, platform::Recordset& devices);
    Filled fill(core::Frame& frame, long recipientKey);
    void clearDevices();
    mdlDatabase::RecipientRecord shownRecipient() const;

    void txtRecipientName_Change();
    void cmdRecipientApply_Click();
    void cmdTestNotification_Click();
    void tvRecipientDevices_NodeClick(const std::string& nodeKey);
    void tvEventsMonitored_MouseMove(const QPoint& position);
    void tvEventsMonitored_NodeClick(const std::string& nodeKey);

    QLabel* lblRecipientName;
    QLineEdit* txtRecipientName;
    QCheckBox* chkRecipientActive;
    QGroupBox* frameDevices;
    ui::DeviceTabs* sstabRecipientDevices;
    ui::KeyedTree* tvRecipientDevices;
    QGroupBox* frameEvents;
    ui::KeyedTree* tvEventsMonitored;
    QPushButton* cmdTestNotification;
    QPushButton* cmdRecipientApply;

    bool recipientChanged_ = false;
    std::optional<long> shownKey_;  // of the recipient that the pane was filled with
};
