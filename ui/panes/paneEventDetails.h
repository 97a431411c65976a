// Pane 1: one monitored event for editing: what it matches, the content of its notification, and whom it goes
// to. Its sources besides this one: filling, saving, recipients.
#pragma once

#include <QWidget>
#include <string>

#include "core/procedure.h"
#include "database/assignment.h"
#include "database/events.h"
#include "ui/panes/editingPane.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;

namespace ui {
class ContentGroup;
class EventIdBox;
class KeyedTree;
}  // namespace ui

class paneEventDetails : public QWidget, public EditingPane {
    Q_OBJECT

  public:
    // `tvNavigation` holds the event's node as the selected one while the pane is worked with.
    paneEventDetails(QWidget* parent, const ui::KeyedTree& tvNavigation);

    // Fills the pane for an event; it holds no unsaved edits then.
    void displayEventDetails(long eventKey);
    // Writes what the controls show. With `silent` no question is asked and no warning given, but for those
    // of the operations themselves.
    void saveEventDataChanges(long eventKey, bool silent);
    void controlInit();

    bool isChanged() const override { return eventDataChanged_; }
    void save(long key) override { saveEventDataChanges(key, true); }
    void discard() override { eventDataChanged_ = false; }

  signals:
    // The event was written: the tree, and with it this pane, are out of date.
    void eventSaved(long eventKey);

  private:
    void createControls();
    void createContentControls();
    void buildLayout();
    QLayout* matchLayout();
    void layOutRecipients();
    void connectControls();
    void connectList(QComboBox& list, const char* handler);
    void connectChoice(QComboBox& list, const char* handler);

    // Change tracking. `handler` is the name in the log of what noticed the change.
    void noteChange(const char* handler);
    void markChanged();
    void updateEventApply();

    void fillEvent(core::Frame& frame, long eventKey);
    void fillSources(core::Frame& frame, bool catchAll);
    void fillContent(core::Frame& frame, long eventKey);
    void fillDefaultContent(core::Frame& frame);
    void fillStoredContent(core::Frame& frame, platform::Recordset& contents);

    mdlDatabase::ModifiedEvent shownEvent(long eventKey) const;
    void cmdEventApply_Click();
    void cmdExclusions_Click();

    // The key of the event whose node is selected in the navigation tree. Raises 35601 when none is.
    long selectedEventKey() const;
    // Asks about unsaved edits and does what is answered; false for Cancel.
    bool settleChanges(long eventKey);
    // Whom the event goes to, chosen anew; nothing on Cancel. True when it was written.
    bool editRecipients(long eventKey);
    // The same for an event that nobody is on; a first recipient is created when there is none.
    void assignFirstRecipients(core::Frame& frame, long eventKey);
    void cmdAddRecipient_Click();
    void cmdRemoveRecipient_Click();
    void tvRecipients_NodeClick(const std::string& nodeKey);
    void tvRecipients_NodeCheck(const std::string& nodeKey);

    const ui::KeyedTree& tvNavigation;
    QLabel* lblEventSource;
    QComboBox* comboEventSource;
    QLabel* lblEventId;
    ui::EventIdBox* comboEventId;
    QLabel* lblEventType;
    QComboBox* comboEventType;
    QCheckBox* chkActive;
    QLabel* lblEventNotes;
    QLineEdit* txtEventTitle;
    QGroupBox* frameRecipients;
    ui::KeyedTree* tvRecipients;
    QPushButton* cmdAddRecipient;
    QPushButton* cmdRemoveRecipient;
    QGroupBox* frameContent;
    ui::ContentGroup* content;
    QPushButton* cmdExclusions;
    QPushButton* cmdEventApply;

    bool eventDataChanged_ = false;
    bool eventRecipientsChanged_ = false;  // for the rest of the run once a box was ticked; it stays so
    mdlDatabase::DeviceSelection selectedDevices_;  // the devices ticked in tvRecipients
};
