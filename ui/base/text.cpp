#include "ui/base/text.h"

#include "core/modLocalize.h"

namespace ui {

QString text(long id) {
    return fromUtf8(modLocalize::myLoadResString(id));
}

}  // namespace ui
