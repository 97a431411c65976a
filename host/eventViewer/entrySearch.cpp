#include "host/eventViewer/entrySearch.h"

#include <QElapsedTimer>

#include "host/eventViewer/eventModel.h"

namespace viewer {

EntrySearch::EntrySearch(EventModel& model) : QObject(&model), model_(model) {
    nextTurn_.setSingleShot(true);
    connect(&nextTurn_, &QTimer::timeout, this, &EntrySearch::goOn);
    connect(&model, &EventModel::wentOn, this, [this] {
        if (isSearching_)
            nextTurn_.start();
    });
    connect(&model, &EventModel::modelReset, this, &EntrySearch::stop);
}

void EntrySearch::start(const QString& text, int row, bool backwards) {
    text_ = text;
    first_ = row;
    row_ = row;
    backwards_ = backwards;
    isRound_ = false;
    isSearching_ = true;
    goOn();
}

void EntrySearch::stop() {
    isSearching_ = false;
    nextTurn_.stop();
}

// At an end of the rows. False when the search has to wait for more of them, or is over.
bool EntrySearch::turnRound() {
    const bool mayGetMore = model_.hasEarlier() && model_.failure().empty();
    if (!backwards_ && !isRound_ && (mayGetMore || !model_.isAtRest())) {
        // Older entries are looked through too before the search begins anew.
        model_.readAll();
        return false;
    }
    if (isRound_ || model_.rowCount() == 0) {
        stop();
        emit foundNothing();
        return false;
    }
    isRound_ = true;
    row_ = backwards_ ? model_.rowCount() : -1;
    return true;
}

void EntrySearch::goOn() {
    constexpr qint64 longestTurn = 5;  // ms
    constexpr int between = 64;        // two looks at the clock
    QElapsedTimer turn;
    turn.start();
    for (int looks = 1; isSearching_; ++looks) {
        const int next = row_ + (backwards_ ? -1 : 1);
        const bool isPast = isRound_ && (backwards_ ? next < first_ : next > first_);
        if (isPast || next < 0 || next >= model_.rowCount()) {
            if (isPast) {
                stop();
                emit foundNothing();
                return;
            }
            if (!turnRound())
                return;
            continue;
        }
        row_ = next;
        if (model_.contains(*model_.entryAt(row_), text_)) {
            stop();
            emit found(row_);
            return;
        }
        if (looks % between == 0 && turn.elapsed() >= longestTurn) {
            nextTurn_.start();
            return;
        }
    }
}

}  // namespace viewer
