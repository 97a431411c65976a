#include "ui/helpViewer/helpSearch.h"

#include <QStringDecoder>
#include <QTextDocument>
#include <algorithm>

#include "platform/libraries/chmFile.h"
#include "ui/base/text.h"

namespace ui {

HelpSearch::HelpSearch(const platform::ChmFile& file) {
    for (const std::string& name : file.pages()) {
        const std::string& bytes = *file.find(name);
        const QByteArray data(bytes.data(), static_cast<qsizetype>(bytes.size()));
        QTextDocument document;
        document.setHtml(QStringDecoder::decoderForHtml(data)(data));
        Page page{fromUtf8(name), document.metaInformation(QTextDocument::DocumentTitle).trimmed(),
                  document.toPlainText()};
        if (page.title.isEmpty())
            page.title = page.name;
        pages_.push_back(std::move(page));
    }
}

std::vector<HelpHit> HelpSearch::find(const QStringList& words) const {
    struct Ranked {
        qsizetype inTitle;
        qsizetype inText;
        const Page* page;
    };
    std::vector<Ranked> found;
    for (const Page& page : pages_) {
        Ranked rank{0, 0, &page};
        const bool all = std::all_of(words.begin(), words.end(), [&](const QString& word) {
            const qsizetype count = page.text.count(word, Qt::CaseInsensitive);
            const bool inTitle = page.title.contains(word, Qt::CaseInsensitive);
            rank.inTitle += inTitle;
            rank.inText += count;
            return count > 0 || inTitle;
        });
        if (all && !words.isEmpty())
            found.push_back(rank);
    }
    std::stable_sort(found.begin(), found.end(), [](const Ranked& a, const Ranked& b) {
        return std::tie(b.inTitle, b.inText) < std::tie(a.inTitle, a.inText);
    });
    std::vector<HelpHit> hits;
    hits.reserve(found.size());
    for (const Ranked& rank : found)
        hits.push_back({rank.page->title, rank.page->name});
    return hits;
}

QString HelpSearch::title(const QString& page) const {
    for (const Page& candidate : pages_)
        if (candidate.name.compare(page, Qt::CaseInsensitive) == 0)
            return candidate.title;
    return page;
}

}  // namespace ui
