// What the shell asks of a pane that can hold unsaved edits.
#pragma once

class EditingPane {
  public:
    virtual ~EditingPane() = default;

    // True while the pane holds unsaved edits.
    virtual bool isChanged() const = 0;
    // Writes the edits for the thing with that database key; asks and warns of nothing.
    virtual void save(long key) = 0;
    // The pane holds no unsaved edits any more, whatever its controls show.
    virtual void discard() = 0;

  protected:
    EditingPane() = default;
    EditingPane(const EditingPane&) = default;
    EditingPane& operator=(const EditingPane&) = default;
};
