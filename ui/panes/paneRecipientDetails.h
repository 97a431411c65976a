// Pane 3: one recipient for editing, his devices, and the events that he is notified of.
#pragma once

#include <QWidget>
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
    // `tvNavigation` holds the recipient's node as the selected one while the pane is worked with.
    paneRecipientDetails(QWidget* parent, const ui::KeyedTree& tvNavigation);

    // Fills the pane for a recipient; it holds no unsaved edits then.
    void displayRecipient(long recipientKey);
    void displayMonitoredEventsForRecipient(long recipientKey);
    void displayDevicesForRecipient(long recipientKey);
    // Takes the tabs of the kinds that this server does not offer out of sight.
    void hideUnsupportedKinds();
    void controlInit();

    bool isChanged() const override { return recipientChanged_; }
    void save(long key) override;
    void discard() override { recipientChanged_ = false; }

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
    void addDeviceNode(core::Frame& frame, const platform::Recordset& device, std::string& kindNode);
    mdlDatabase::RecipientRecord shownRecipient() const;
    // The key of the recipient whose node is selected in the navigation tree. Raises 35601 when none is.
    long selectedRecipientKey() const;

    void txtRecipientName_Change();
    void cmdRecipientApply_Click();
    void cmdTestNotification_Click();
    void tvRecipientDevices_NodeClick(const std::string& nodeKey);
    void tvEventsMonitored_MouseMove(const QPoint& position);
    void tvEventsMonitored_NodeClick(const std::string& nodeKey);

    const ui::KeyedTree& tvNavigation;
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
    long recipientKey_ = 0;  // of the recipient that is shown; 0 before the first one
};
