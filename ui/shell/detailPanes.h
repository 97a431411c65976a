// The eight panes beside the tree, of which one is shown. One table says which pane shows what.
#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/base/classNodeInfo.h"
#include "ui/panes/editingPane.h"

class QWidget;
class paneEventDetails;
class paneExclusionDetails;
class paneExclusions;
class paneMonitoredEvents;
class paneRecipientDetails;
class paneRecipients;

class DetailPanes : public QObject {
    Q_OBJECT

  public:
    // The panes lie over `client`, which owns them.
    explicit DetailPanes(QWidget& client);

    // A pane that can hold unsaved edits when another node is chosen.
    struct Editing {
        EditingPane* pane;
        long question;      // string-table text that tells what has changed
        bool rebuildsTree;  // its nodes show what a save changes
    };
    // In the order in which they are asked.
    const std::vector<Editing>& editing() const { return editing_; }
    // True while one of them holds unsaved edits.
    bool isAnyChanged() const;

    // Shows the pane for nodes of that type and fills it; another type changes nothing.
    Filled display(const classNodeInfo& info, const std::string& nodeText);
    // Makes pane `index`, 0 to 7, the visible one.
    void show(int index);
    // What was deleted is shown by no pane any more.
    void forget(long nodeType, long key);
    // Captions in the present language.
    void controlInit();
    // All panes lie over each other.
    void place(const QRect& rectangle);

    paneMonitoredEvents* events;
    paneEventDetails* eventDetails;
    paneRecipients* recipients;
    paneRecipientDetails* recipientDetails;
    paneExclusions* exclusions;
    paneExclusionDetails* exclusionDetails;

  private:
    struct Row {
        long nodeType;
        QWidget* pane;
        std::function<Filled(const classNodeInfo&, const std::string&)> fill;
        std::function<void()> controlInit;
        EditingPane* one;  // the pane, where it shows a single thing
    };
    std::vector<Row> rows_;  // by index of the pane
    std::vector<Editing> editing_;
};
