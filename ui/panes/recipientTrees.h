// The two trees of one recipient: his devices by kind, and the events that he is notified of.
#pragma once

namespace ui {
class KeyedTree;
}

namespace recipientTrees {

// Refills the tree of his devices, of the kinds that this server offers.
void showDevices(ui::KeyedTree& tree, long recipientKey);
// Refills the tree of his events, but for the hidden one.
void showEvents(ui::KeyedTree& tree, long recipientKey);

}  // namespace recipientTrees
