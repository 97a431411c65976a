// Pane 2: all recipients in a grid, with the devices that each of them has.
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace ui {
class KeyedGrid;
}

class paneRecipients : public QWidget {
    Q_OBJECT

  public:
    explicit paneRecipients(QWidget* parent);

    // Refills the grid from the database.
    void displayAllRecipients();
    // Gives the names what the other columns leave of the grid's width; only while the pane is shown.
    void resizeAllRecipientsGrid();
    // Sets the captions.
    void controlInit();

  signals:
    void newRecipientWanted();
    // A recipient was switched on or off, or deleted: the tree and this grid are out of date.
    void recipientSwitched();
    void recipientDeleted();
    void recipientOpened(long recipientKey);

  private:
    void vsflexgridAllRecipients_Click();
    void vsflexgridAllRecipients_DblClick();
    void cmdDeleteSelectedRecipient_Click();
    // Of the current row; raises 5 when there is none.
    long currentRecipientKey() const;

    QLabel* lblAllRecipients;
    ui::KeyedGrid* vsflexgridAllRecipients;
    QPushButton* cmdCreateNewRecipient;
    QPushButton* cmdDeleteSelectedRecipient;
};
