#include "ui/parts/eventSourceList.h"

#include <QComboBox>

#include "core/state.h"
#include "server/eventSources.h"
#include "ui/base/text.h"

namespace ui {

void fillEventSources(QComboBox& comboEventSource) {
    comboEventSource.clear();
    QStringList sources;
    for (const std::string& source : mdlUtility::getEventSources(core::gCorvaneFourOrLater, false, false))
        sources.append(fromUtf8(source));
    comboEventSource.addItems(sources);
    comboEventSource.setCurrentIndex(-1);
}

}  // namespace ui
