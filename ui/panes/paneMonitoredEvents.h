// Pane 0: all monitored events in a grid.
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace ui {
class KeyedGrid;
}

class paneMonitoredEvents : public QWidget {
    Q_OBJECT

  public:
    explicit paneMonitoredEvents(QWidget* parent);

    // Refills the grid from the database.
    void displayEvents();
    // Sets the captions.
    void controlInit();

  signals:
    void newEventWanted();
    // An event was switched or deleted: the tree and this grid are out of date.
    void eventsChanged();
    void eventOpened(long eventKey);

  private:
    void refillInPresentLanguage();
    void vsflexgridMonitoredEvents_Click();
    void vsflexgridMonitoredEvents_DblClick();
    void cmdDeleteSelectedEvent_Click();
    long currentEventKey() const;

    QLabel* lblAllMonitoredEvents;
    ui::KeyedGrid* vsflexgridMonitoredEvents;
    QPushButton* cmdCreateNewEvent;
    QPushButton* cmdDeleteSelectedEvent;
};
