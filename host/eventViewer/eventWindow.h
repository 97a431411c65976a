// The event viewer: the host's Application and System logs as a table, the chosen event in full below it.
#pragma once

#include <QMainWindow>
#include <string>

#include "host/viewer/texts.h"

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSplitter;
class QTableView;

namespace viewer {

class EventModel;

class EventWindow : public QMainWindow {
  public:
    explicit EventWindow(Language language);

    // Reads the chosen log anew; the chosen event stays chosen while it is shown.
    void refresh();

  private:
    QWidget* createChoices();
    QSplitter* createTableAndDetails();
    void connectControls();
    void showLog();
    void fitColumns();
    void chooseType();
    void showDetails();
    void showWhatWasRead();
    void showFailure(const std::string& description);
    void copyEvent();
    bool find(const QString& text, bool backwards);
    int currentRow() const;

    const Texts& texts_;
    EventModel* model_ = nullptr;
    QComboBox* comboLog_;
    QComboBox* comboType_;
    QPushButton* cmdRefresh_;
    QPushButton* cmdCopy_;
    QTableView* tableEvents_;
    QPlainTextEdit* txtDetails_;
    QLabel* lblCount_;
};

}  // namespace viewer
