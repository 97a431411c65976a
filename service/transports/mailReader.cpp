#include "service/transports/mailReader.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <memory>
#include <mutex>

#include "platform/files/files.h"
#include "platform/machine/clock.h"

namespace service {

namespace {

namespace fs = std::filesystem;

template <class Object>
struct Unref {
    void operator()(Object* object) const noexcept { g_object_unref(object); }
};
template <class Object>
using Owner = std::unique_ptr<Object, Unref<Object>>;

std::string textOf(const char* text) {
    return text ? text : "";
}

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> found;
    if (platform::files::folderExists(folder))
        for (const auto& each : platform::files::listFiles(folder))
            found.push_back(folder / each.name);
    return found;
}

void addPart(GMimeObject*, GMimeObject* part, gpointer user) {
    MailView& view = *static_cast<MailView*>(user);
    if (!GMIME_IS_PART(part))
        return;
    if (const char* const name = g_mime_part_get_filename(GMIME_PART(part))) {
        view.attachments.emplace_back(name);
    } else if (GMIME_IS_TEXT_PART(part)) {
        const std::unique_ptr<char, decltype(&g_free)> text(g_mime_text_part_get_text(GMIME_TEXT_PART(part)),
                                                            &g_free);
        view.body += textOf(text.get());
    }
}

MailView viewOf(const fs::path& file, bool isUnread) {
    MailView view{file, isUnread, {}, {}, {}, {}};
    const std::string text = platform::files::readFile(file);
    const Owner<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(text.data(), text.size()));
    const Owner<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    const Owner<GMimeMessage> mail(g_mime_parser_construct_message(parser.get(), nullptr));
    if (!mail)
        return view;
    view.subject = textOf(g_mime_message_get_subject(mail.get()));
    if (GDateTime* const date = g_mime_message_get_date(mail.get()))
        view.date = platform::storedForm(
            platform::localTime(std::chrono::system_clock::from_time_t(g_date_time_to_unix(date))));
    g_mime_message_foreach(mail.get(), &addPart, &view);
    return view;
}

void initializeOnce() {
    static std::once_flag once;
    std::call_once(once, [] { g_mime_init(); });
}

}  // namespace

std::vector<MailboxView> mailboxesIn(const fs::path& mailFolder) {
    std::vector<MailboxView> boxes;
    if (!fs::is_directory(mailFolder))
        return boxes;
    for (const auto& entry : fs::directory_iterator(mailFolder))
        if (entry.is_directory() && !entry.is_symlink())
            boxes.push_back({entry.path().filename().string(), filesIn(entry.path() / "new").size(),
                             filesIn(entry.path() / "cur").size()});
    std::ranges::sort(boxes, {}, &MailboxView::address);
    return boxes;
}

std::vector<MailView> mailsOf(const fs::path& mailFolder, const std::string& address) {
    initializeOnce();
    std::vector<MailView> mails;
    for (const bool isUnread : {false, true})
        for (const fs::path& file : filesIn(mailFolder / address / (isUnread ? "new" : "cur")))
            mails.push_back(viewOf(file, isUnread));
    std::ranges::stable_sort(mails, {}, &MailView::date);
    return mails;
}

}  // namespace service
