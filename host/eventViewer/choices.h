// What stands above the table: which log is shown, which of its entries, and what can be done with them.
#pragma once

#include <QWidget>
#include <optional>

#include "host/eventViewer/eventModel.h"
#include "host/viewer/texts.h"

class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;

namespace viewer {

class Choices : public QWidget {
    Q_OBJECT

  public:
    Choices(const Texts& texts, QWidget* parent);

    Log log() const;
    // The choices, without a text.
    Filter filter() const;
    bool isOfNotifications() const;
    bool follows() const;
    void addSource(const QString& source);
    // What the chosen entry, if one is, can be asked for.
    void allow(bool copy, bool exportShown, bool sendAgain);

  signals:
    void logChosen();
    void filterChosen();
    void followChosen();
    void refreshWanted();
    void copyWanted();
    void exportWanted();
    void sendAgainWanted();
    void lastDaysWanted();

  private:
    // Makes the list and gives its label.
    QLabel* addChoice(QHBoxLayout& row, QComboBox*& combo, const char* name, const char* caption);
    QPushButton* addButton(QHBoxLayout& row, const char* name, const char* caption,
                           void (Choices::*wanted)());
    QWidget* createFilters();
    QWidget* createButtons();
    void fitToLog();

    const Texts& texts_;
    // As it was when the window began: what its row is called is what it shows, whatever is switched off.
    std::optional<Log> journal_;
    QComboBox* comboLog_;
    QComboBox* comboType_;
    QLabel* lblOutcome_;
    QComboBox* comboOutcome_;
    QComboBox* comboSource_;
    QCheckBox* chkFollow_;
    QPushButton* cmdCopy_;
    QPushButton* cmdExport_;
    QPushButton* cmdSendAgain_;
};

}  // namespace viewer
