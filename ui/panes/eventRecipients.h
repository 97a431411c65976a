// Whom an event goes to: the tree of its recipients and their devices, and the two buttons that change it. A
// part of the pane of one event, which asks about unsaved edits before a button does its work.
#pragma once

#include <QGroupBox>
#include <string>

#include "core/procedure.h"
#include "database/assignment.h"

class QPushButton;

namespace ui {
class KeyedTree;
}

class EventRecipients : public QGroupBox {
    Q_OBJECT

  public:
    explicit EventRecipients(QWidget* parent);

    // Shows the recipients of an event; nothing is chosen to be removed. False when they could not be read.
    bool show(long eventKey);
    // Shows nobody.
    void blank();
    void controlInit();

    // True when the database can be read and holds no such event.
    static bool isEventGone(long eventKey);
    // Lets the administrator choose anew whom the event goes to, under the event's name; nothing on Cancel
    // and for an event that is gone meanwhile. True when it was written.
    bool edit(long eventKey, const std::string& eventName);
    // The same for an event that nobody is on; a first recipient is created when there is none.
    void assignFirst(core::Frame& frame, long eventKey, const std::string& eventName);

    // The devices that are ticked. A save uses them up.
    mdlDatabase::DeviceSelection& selection() { return selectedDevices_; }
    // Required: true for the rest of the run once a box was ticked.
    bool wereEverTicked() const { return everTicked_; }
    // Database key of the recipient who is selected. Raises 35601 when nobody is.
    long selectedRecipient() const;

    // In their tab order.
    ui::KeyedTree* tvRecipients;
    QPushButton* cmdAddRecipient;
    QPushButton* cmdRemoveRecipient;

  signals:
    // A person ticked a box or took a tick away.
    void ticked();

  private:
    void tvRecipients_NodeClick(const std::string& nodeKey);
    void tvRecipients_NodeCheck(const std::string& nodeKey);

    bool everTicked_ = false;
    mdlDatabase::DeviceSelection selectedDevices_;
};
