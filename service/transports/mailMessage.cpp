#include "service/transports/mailMessage.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <exception>
#include <memory>

#include "platform/files/files.h"

namespace service {

namespace {

struct Unref {
    void operator()(void* object) const noexcept { g_object_unref(object); }
};
template <class Object>
using Owner = std::unique_ptr<Object, Unref>;

// The library is set up once and stays so until the process ends.
void prepareLibrary() {
    static const bool isReady = (g_mime_init(), true);
    static_cast<void>(isReady);
}

bool isControl(char character) noexcept {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

// In one line, so that no text gets a header of its own.
std::string headerText(std::string text) {
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

std::string withLineFeeds(const std::string& text) {
    std::string lines;
    lines.reserve(text.size() + 1);
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r')
            lines.push_back(text[i]);
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            lines.push_back('\n');
    if (!lines.ends_with('\n'))
        lines.push_back('\n');
    return lines;
}

void setContent(GMimePart* part, const std::string& content, GMimeContentEncoding encoding) {
    const Owner<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(content.data(), content.size()));
    const Owner<GMimeDataWrapper> wrapper(
        g_mime_data_wrapper_new_with_stream(stream.get(), GMIME_CONTENT_ENCODING_DEFAULT));
    g_mime_part_set_content(part, wrapper.get());
    g_mime_part_set_content_encoding(part, encoding);
}

Owner<GMimeObject> textPart(const std::string& text) {
    GMimePart* const part = g_mime_part_new_with_type("text", "plain");
    Owner<GMimeObject> owner(GMIME_OBJECT(part));
    g_mime_object_set_content_type_parameter(owner.get(), "charset", "utf-8");
    // Quoted lines stay short whatever the text is, and plain ones can be read as they are.
    setContent(part, text, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
    return owner;
}

Owner<GMimeObject> voicePart(const std::string& content, const std::string& name) {
    GMimePart* const part = g_mime_part_new_with_type("audio", "x-wav");
    Owner<GMimeObject> owner(GMIME_OBJECT(part));
    g_mime_object_set_disposition(owner.get(), GMIME_DISPOSITION_ATTACHMENT);
    g_mime_part_set_filename(part, headerText(name).c_str());
    setContent(part, content, GMIME_CONTENT_ENCODING_BASE64);
    return owner;
}

Owner<GMimeObject> contentOf(const Message& message) {
    std::string text = withLineFeeds(message.body);
    if (message.voiceFile.empty())
        return textPart(text);
    Owner<GMimeObject> voice;
    try {
        voice = voicePart(platform::files::readFile(message.voiceFile), message.voiceFile.filename());
    } catch (const std::exception& failure) {
        text += "The voice file " + message.voiceFile.string() + " is not attached: " + failure.what() + "\n";
        return textPart(text);
    }
    GMimeMultipart* const multipart = g_mime_multipart_new_with_subtype("mixed");
    Owner<GMimeObject> owner(GMIME_OBJECT(multipart));
    g_mime_multipart_add(multipart, textPart(text).get());
    g_mime_multipart_add(multipart, voice.get());
    return owner;
}

void addAddress(GMimeMessage* mail, GMimeAddressType type, const std::string& address) {
    g_mime_message_add_mailbox(mail, type, nullptr, address.c_str());
}

void setHeader(GMimeMessage* mail, const char* name, const char* value) {
    g_mime_object_set_header(GMIME_OBJECT(mail), name, value, "utf-8");
}

void addHeaders(GMimeMessage* mail, const Message& message, const std::string& from) {
    addAddress(mail, GMIME_ADDRESS_TYPE_FROM, from);
    addAddress(mail, GMIME_ADDRESS_TYPE_TO, message.address);
    g_mime_message_set_subject(mail, headerText(message.subject).c_str(), "utf-8");
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
        g_date_time_new_from_unix_local(std::chrono::system_clock::to_time_t(message.created)),
        &g_date_time_unref);
    g_mime_message_set_date(mail, date.get());
    const std::size_t at = from.rfind('@');
    const std::string domain = at == std::string::npos ? "localhost" : from.substr(at + 1);
    g_mime_message_set_message_id(mail, (nameOfKey(message.key) + "@" + domain).c_str());
    if (message.priority == Priority::normal)
        return;
    const bool isUrgent = message.priority == Priority::urgent;
    setHeader(mail, "X-Priority", isUrgent ? "1" : "5");
    setHeader(mail, "Importance", isUrgent ? "high" : "low");
    setHeader(mail, "Priority", isUrgent ? "urgent" : "non-urgent");
}

}  // namespace

std::string nameOfKey(std::string_view key) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string name;
    for (const char character : key)
        if (g_ascii_isalnum(character) || character == '-' || character == '_') {
            name.push_back(character);
        } else {
            const auto byte = static_cast<unsigned char>(character);
            name.append({'=', digits[byte >> 4], digits[byte & 15]});
        }
    return name;
}

std::string mailMessage(const Message& message, const std::string& from) {
    prepareLibrary();
    const Owner<GMimeMessage> mail(g_mime_message_new(TRUE));
    addHeaders(mail.get(), message, from);
    g_mime_message_set_mime_part(mail.get(), contentOf(message).get());
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_mime_object_to_string(GMIME_OBJECT(mail.get()), nullptr), &g_free);
    return text.get();
}

}  // namespace service
