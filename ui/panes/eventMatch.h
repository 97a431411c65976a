// What an event matches, and its own two fields: source, id, type, active, notes. A part of the pane of one
// event, which listens to its controls.
#pragma once

#include <QWidget>
#include <string>

#include "core/procedure.h"
#include "database/events.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace ui {
class EventIdBox;
class LimitsSign;
}  // namespace ui

class EventMatch : public QWidget {
    Q_OBJECT

  public:
    explicit EventMatch(QWidget* parent);

    // Shows the present row of an event.
    void show(core::Frame& frame, const platform::Recordset& event);
    void blank();
    void controlInit();
    // Puts what is shown into the event.
    void collect(mdlDatabase::ModifiedEvent& event) const;
    // A source that is a caption and cannot be chosen.
    bool isCatchAll() const;
    // An id that is no id is told while it is typed.
    void showWhetherIdFits();

    // In their tab order.
    QComboBox* comboEventSource;
    ui::EventIdBox* comboEventId;
    QComboBox* comboEventType;
    QCheckBox* chkActive;
    QLineEdit* txtEventTitle;

  private:
    void createControls();
    void buildLayout();
    void fillSources(core::Frame& frame, bool catchAll);

    QLabel* lblEventSource;
    QLabel* lblEventId;
    ui::LimitsSign* idLimits;
    QLabel* lblEventType;
    QLabel* lblEventNotes;
    std::string storedSource_;
    std::string storedId_;
};
