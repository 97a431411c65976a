#include "ui/helpViewer/helpPages.h"

#include "platform/libraries/chmFile.h"
#include "ui/base/text.h"

namespace ui {

namespace {

constexpr char scheme[] = "help";

}  // namespace

QUrl helpUrl(const QString& page) {
    const qsizetype anchor = page.indexOf('#');
    QUrl url;
    url.setScheme(scheme);
    url.setPath("/" + page.left(anchor));
    if (anchor >= 0)
        url.setFragment(page.mid(anchor + 1));
    return url;
}

HelpPages::HelpPages(QWidget* parent) : QTextBrowser(parent) {
    setObjectName("helpPages");
    setOpenExternalLinks(false);
    document()->setDocumentMargin(14);
}

void HelpPages::setFile(std::shared_ptr<const platform::ChmFile> file) {
    file_ = std::move(file);
    clear();
    clearHistory();
}

void HelpPages::showFound(const QString& page, const QStringList& words) {
    setSource(helpUrl(page));
    moveCursor(QTextCursor::Start);
    for (const QString& word : words)
        if (find(word))
            return;
}

QVariant HelpPages::loadResource(int type, const QUrl& name) {
    const QUrl url = source().resolved(name);
    const std::string* bytes = file_ && url.scheme() == scheme ? file_->find(toUtf8(url.path())) : nullptr;
    if (!bytes)
        return {};
    const QByteArray content(bytes->data(), static_cast<qsizetype>(bytes->size()));
    // Pages state their own encoding, style sheets have none.
    if (type == QTextDocument::StyleSheetResource)
        return QString::fromUtf8(content);
    return content;
}

// A link may lead out of the file, to a page that is not there or to the network: such a click does nothing.
void HelpPages::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    const QUrl url = source().resolved(name);
    if (file_ && url.scheme() == scheme && file_->find(toUtf8(url.path())))
        QTextBrowser::doSetSource(url, type);
}

}  // namespace ui
