// Pane 1: one monitored event for editing: what it matches, the content of its notification, and whom it goes
// to. It is filled in a fixed order: filling a control raises the same handlers as a person's change, and the
// flag that they set is cleared last.
#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "core/procedure.h"
#include "database/events.h"
#include "ui/panes/editingPane.h"

class EventMatch;
class EventRecipients;
class QComboBox;
class QGroupBox;
class QPushButton;

namespace ui {
class ContentGroup;
}  // namespace ui

class paneEventDetails : public QWidget, public EditingPane {
    Q_OBJECT

  public:
    explicit paneEventDetails(QWidget* parent);

    // Fills the pane for an event, whose node has that text; it holds no unsaved edits then.
    Filled displayEventDetails(long eventKey, const std::string& nodeText);
    // Shows the event's recipients anew with the boxes as they are stored, unless there are unsaved edits.
    void refillRecipients();
    // Writes what the controls show. With `silent` no question is asked and no warning given, but for those
    // of the operations themselves.
    void saveEventDataChanges(long eventKey, bool silent);
    void controlInit();

    std::optional<long> shownKey() const override { return shownKey_; }
    bool isChanged() const override { return eventDataChanged_; }
    void save() override;
    void discard() override { eventDataChanged_ = false; }
    void blank() override;

  signals:
    // The event was written: the tree, and with it this pane, are out of date.
    void eventSaved(long eventKey);

  private:
    void createControls();
    void createContentControls();
    void buildLayout();
    void connectControls();
    void connectList(QComboBox& list, const char* handler);
    void connectChoice(QComboBox& list, const char* handler);

    // Change tracking. `handler` is the name in the log of what noticed the change.
    void noteChange(const char* handler);
    void markChanged();
    void updateEventApply();

    // False when something that a save would overwrite could not be read; `found` tells of the row.
    bool fillEvent(core::Frame& frame, long eventKey, bool& found);
    bool fillContent(core::Frame& frame, long eventKey);

    mdlDatabase::ModifiedEvent shownEvent(long eventKey) const;
    void cmdEventApply_Click();
    void cmdExclusions_Click();

    // Asks about unsaved edits and does what is answered; false for Cancel.
    bool settleChanges(long eventKey);
    void cmdAddRecipient_Click();
    void cmdRemoveRecipient_Click();

    EventMatch* match;
    EventRecipients* recipients;
    QGroupBox* frameContent;
    ui::ContentGroup* content;
    QPushButton* cmdExclusions;
    QPushButton* cmdEventApply;

    bool eventDataChanged_ = false;
    std::optional<long> shownKey_;  // of the event that the pane was filled with
    std::string nodeText_;          // of its node
};
