#include "ui/voiceFileBrowse.h"

#include <QLineEdit>

#include "core/modLocalize.h"
#include "platform/prompts.h"
#include "server/voiceFiles.h"
#include "ui/text.h"

namespace ui {

void browseVoiceFile(QLineEdit& txtVoiceMailFileName) {
    using modLocalize::myLoadResString;
    const QString kept = txtVoiceMailFileName.text();
    const std::optional<std::string> chosen = platform::prompts().openFile(
        {myLoadResString(1044), myLoadResString(1045), ".wav", mdlUtility::databaseFolder().string()});
    if (!chosen || chosen->empty())
        return;
    txtVoiceMailFileName.setText(fromUtf8(mdlUtility::copyFileToDatabaseDirectory(*chosen)));
    if (txtVoiceMailFileName.text().isEmpty())
        txtVoiceMailFileName.setText(kept);
}

}  // namespace ui
