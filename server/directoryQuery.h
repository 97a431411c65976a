// The statements that search the server's directory, on both of its layouts.
#pragma once

#include <string>

namespace directoryQuery {

// What is searched: the numbers that the caller of the search window gives it.
enum SelectMode : short { searchSubscribers = 1, searchDistributionLists = 2 };

// The field that the search text is held against.
enum SearchField : short { displayName = 0, extension = 1, alias = 2, firstName = 3, lastName = 4 };

struct Search {
    bool views = false;  // the directory has the newer layout
    short selectMode = searchSubscribers;
    short searchField = lastName;
    // "*" finds all, an empty text the rows whose field is blank; a "*" in a longer text stands for any
    // characters, and a text without one is held against the whole field.
    std::string text;
    // What follows SubscriberType IN, with its brackets; distribution lists have no type.
    std::string subscriberTypes;
};

// The statement for a search, sorted by alias. The text goes into it as it was typed, blanks at its ends left
// aside, and is not escaped: an apostrophe breaks the statement, which then fails and finds nothing.
std::string buildSQLQuery(const Search& search);

}  // namespace directoryQuery
