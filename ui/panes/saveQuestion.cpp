#include "ui/panes/saveQuestion.h"

#include "core/modLocalize.h"

namespace ui {

platform::BoxAnswer askToSave(long changed) {
    using modLocalize::myLoadResString;
    return platform::prompts().messageBox({myLoadResString(changed) + "\n" + myLoadResString(1135),
                                           myLoadResString(1136), platform::BoxIcon::question,
                                           platform::BoxButtons::yesNoCancel});
}

}  // namespace ui
