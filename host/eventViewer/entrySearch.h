// The search for a text through the rows of a log, in short turns: it reads on where the log goes on.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace viewer {

class EventModel;

class EntrySearch : public QObject {
    Q_OBJECT

  public:
    explicit EntrySearch(EventModel& model);

    // Begins at a row, which is the last that is looked at; ends another search. A row below 0 begins before
    // the first.
    void start(const QString& text, int row, bool backwards);
    bool isSearching() const { return isSearching_; }
    void stop();

  signals:
    void found(int row);
    void foundNothing();

  private:
    void goOn();
    bool turnRound();

    EventModel& model_;
    QTimer nextTurn_;
    QString text_;
    int first_ = 0;  // where the search began
    int row_ = 0;
    bool backwards_ = false;
    bool isRound_ = false;  // it has begun anew at the other end
    bool isSearching_ = false;
};

}  // namespace viewer
