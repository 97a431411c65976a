// A compiled help file: its pages, its table of contents and index, and the numbers of its topics. The file
// is checked and read whole when it is opened; it may be replaced while it is shown.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/libraries/chmSitemap.h"

namespace platform {

class ChmFile {
  public:
    // Raises fileNotFound or another failure of reading; pathFileAccessError with the reason for a file that
    // is malformed, holds more than 64 MiB or has no page.
    static ChmFile open(const std::filesystem::path& file);

    // All texts are UTF-8; a foreign file's older encoding is taken as Latin-1.
    const std::string& title() const { return title_; }
    // The page to begin with; the first page when the file names none that it has.
    const std::string& defaultPage() const { return defaultPage_; }
    const std::vector<ChmEntry>& contents() const { return contents_; }
    const std::vector<ChmEntry>& index() const { return index_; }

    // The HTML pages by name, without a slash in front.
    std::vector<std::string> pages() const;
    // The page of a topic number.
    std::optional<std::string> pageOfTopic(long topic) const;
    // The bytes of a page, picture or style sheet; the name with or without a slash in front, without regard
    // to case. Nothing when the file has no such object.
    const std::string* find(std::string_view name) const;

  private:
    void readSystem();
    void readTopics();
    void chooseDefaultPage();

    std::string title_;
    std::string defaultPage_;
    std::string contentsName_;
    std::string indexName_;
    std::vector<ChmEntry> contents_;
    std::vector<ChmEntry> index_;
    std::map<long, std::string> topics_;
    struct Object {
        std::string name;
        std::string bytes;
    };
    std::map<std::string, Object> objects_;  // by name in lower case
};

}  // namespace platform
