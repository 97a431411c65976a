// The table of ./measure: what, ours, the peer's, the ratio. Both sides of a row run alternately in this one
// process, so that what slows the machine down for a while slows both.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// One side of a row: a run takes the time that it measures itself, in seconds, so that preparing is not
// counted.
struct Side {
    std::string name;
    std::function<double()> run;
};

enum class Show { timePerUnit, unitsPerSecond };

struct Row {
    std::string what;
    double units = 1;  // done by one run
    Show show = Show::timePerUnit;
    int rounds = 7;
    double reach = 0;  // the ratio that is not to be passed; 0 for a row that only tells
};

class Table {
  public:
    // Runs each side once without counting it, then both in turn, `row.rounds` times, and keeps the medians.
    void compare(const Row& row, const Side& ours, const Side& peer);
    // A time that has no peer, only a reach, both in seconds: what a person must not wait longer for.
    void tell(const std::string& what, double seconds, double reach);
    // Prints all rows, and after them the times without a peer. The ratio is our time by the peer's: below 1
    // we are faster.
    void print() const;

  private:
    void printCompared() const;
    struct Result {
        Row row;
        std::string peer;
        double ourSeconds;
        double peerSeconds;
    };
    std::vector<Result> results_;
    struct Longest {
        std::string what;
        double seconds;
        double reach;
    };
    std::vector<Longest> longest_;
};

// Seconds that the action takes.
double secondsOf(const std::function<void()>& action);

}  // namespace bench
