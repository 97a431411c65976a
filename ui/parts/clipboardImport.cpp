#include "ui/parts/clipboardImport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "core/modLocalize.h"
#include "platform/prompts.h"
#include "server/clipboardEvent.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/widgets/numberBox.h"

namespace ui {

std::optional<CopiedEvent> takeCopiedEvent(QComboBox& comboEventSource, const NumberBox& idBox) {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data || !data->hasText())
        return std::nullopt;
    std::string source;
    std::string eventId;
    std::int16_t eventType = 0;
    if (!mdlUtility::checkEventFromClipboardText(toUtf8(data->text()), source, eventId, eventType))
        return std::nullopt;
    const std::optional<QString> id = idBox.numberFrom(fromUtf8(eventId));
    if (!id || !setComboText(fromUtf8(source), comboEventSource))
        return std::nullopt;
    return CopiedEvent{*id, eventType};
}

void warnNoEventData() {
    using namespace platform;
    prompts().messageBox({modLocalize::myLoadResString(1203), modLocalize::myLoadResString(1204),
                          BoxIcon::exclamation, BoxButtons::ok});
}

}  // namespace ui
