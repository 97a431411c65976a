// What the shell asks of a pane that shows one thing of the database, and what it may hold unsaved of it.
#pragma once

#include <optional>

// How the filling of such a pane went.
enum class Filled {
    whole,
    unreadable,  // something could not be read: the pane is blank, because a save would overwrite it
    gone         // the thing is not in the database any more: the pane is blank
};

class EditingPane {
  public:
    virtual ~EditingPane() = default;

    // The key of the thing that the pane was filled with; nothing while it is blank.
    virtual std::optional<long> shownKey() const = 0;
    // True while the pane holds unsaved edits.
    virtual bool isChanged() const = 0;
    // Writes the edits for the thing that the pane was filled with; asks and warns of nothing.
    virtual void save() = 0;
    // The pane holds no unsaved edits any more, whatever its controls show.
    virtual void discard() = 0;
    // The pane shows nothing, holds no edits and takes none until it is filled again.
    virtual void blank() = 0;

  protected:
    EditingPane() = default;
    EditingPane(const EditingPane&) = default;
    EditingPane& operator=(const EditingPane&) = default;
};
