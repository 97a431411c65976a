// The tree in which the administrator says who is notified of an event: recipients, below each his devices,
// with check boxes. What is ticked is kept in a selection that the tree's owner owns; a recipient's box only
// shows that one of his devices is ticked.
#pragma once

#include <string>

#include "database/assignment.h"

namespace ui {
class KeyedTree;
}

namespace mdlRecDevices {

using mdlDatabase::DeviceSelection;

// Refills the tree for an event and adds the event's active devices to the selection. With `assignedOnly`
// the recipients who have a device on the event, else all who have a device; always with all their devices.
// False when something could not be read: whoever saved the selection then would take devices off the event.
bool populateRecipientsList(ui::KeyedTree& tree, long eventKey, DeviceSelection& selectedDevices,
                            bool assignedOnly);
// Has the tree tell a program for disabled people who and what is inactive, as its signs tell the eye.
void describeStates(ui::KeyedTree& tree);
// Ticks or clears a node and all that come after it at its level, with all below them.
void checkAllChildren(ui::KeyedTree& tree, DeviceSelection& selectedDevices, const std::string& firstNode,
                      bool state);
// Takes a device's node up into the selection, or out of it.
void recordDeviceState(DeviceSelection& selectedDevices, const std::string& nodeKey, bool state);
// Ticks a node when one of its children is ticked, else clears it.
void checkParentState(ui::KeyedTree& tree, const std::string& parentNode);

// What follows when a person has switched a node's box: selection, children and parent come in step. To be
// called in the frame of the window's handler.
void followCheck(ui::KeyedTree& tree, const std::string& nodeKey, DeviceSelection& selectedDevices);

}  // namespace mdlRecDevices
