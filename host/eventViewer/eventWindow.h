// The event viewer: the host's logs and what was told of them as a table, the chosen entry in full below it,
// and who is told of a record.
#pragma once

#include <QMainWindow>
#include <QTimer>
#include <optional>
#include <string>

#include "host/viewer/texts.h"
#include "host/viewer/worker.h"
#include "ui/widgets/findBar.h"

class QLabel;
class QPlainTextEdit;
class QSplitter;
class QTableView;

namespace viewer {

class Choices;
class EntrySearch;
class EventModel;
class WhoPanel;

class EventWindow : public QMainWindow {
  public:
    explicit EventWindow(Language language);
    ~EventWindow() override;

    // Reads the chosen log anew; the chosen entry stays chosen while it is shown.
    void refresh();
    // True when nothing is read, looked through, looked for, asked or written beside the window.
    bool isAtRest() const;

  private:
    QSplitter* createTableAndDetails();
    QWidget* createDetails(QWidget* parent);
    void connectModel();
    void connectControls();
    void showLog();
    void follow();
    void fitColumns();
    void endExport();
    void applyFilter();
    void begin();
    void goOn();
    void chooseAgain();
    void showChosen();
    void showCounts();
    void copyEntry();
    void exportShown();
    void writeExport();
    void sendAgain();
    void countLastDays();
    void say(const QString& text);
    std::optional<bool> find(const QString& text, ui::FindBar::Step step);
    void choose(int row);
    int currentRow() const;

    const Texts& texts_;
    EventModel* model_ = nullptr;
    EntrySearch* search_ = nullptr;
    Choices* choices_ = nullptr;
    QTableView* tableEvents_;
    QPlainTextEdit* txtDetails_;
    WhoPanel* who_;
    ui::FindBar* findBar_;
    QLabel* lblCount_;
    std::optional<std::uint64_t> wantedPlace_;  // of the entry to be chosen when it has been read
    std::string exportFile_;                    // that waits for the log's beginning
    int columnsFitted_ = 0;                     // for the columns of a log; 0 when they have to be
    int exports_ = 0;                           // that are being written
    bool isSending_ = false;                    // a message again
    QTimer look_;                               // for news
    Worker worker_;
};

}  // namespace viewer
