#include "host/csv.h"

#include "platform/failure.h"

namespace host {

namespace {

// Reads one text from its beginning to its end, row by row.
class CsvReader {
  public:
    CsvReader(std::string_view text, const std::string& name) : text_(text), name_(name) {
        if (text_.starts_with("\xEF\xBB\xBF"))
            text_.remove_prefix(3);
    }

    bool atEnd() const { return position_ == text_.size(); }

    CsvRow row() {
        CsvRow result{line_, {}};
        do {
            result.fields.push_back(field());
        } while (skip(','));
        skip('\r');
        if (!atEnd() && !skip('\n'))
            fail("text behind a closing quote");
        ++line_;
        return result;
    }

  private:
    bool skip(char wanted) {
        if (atEnd() || text_[position_] != wanted)
            return false;
        ++position_;
        return true;
    }

    std::string field() {
        if (skip('"'))
            return quotedField();
        const std::size_t end = std::min(text_.find_first_of(",\n", position_), text_.size());
        std::string_view value = text_.substr(position_, end - position_);
        if (value.ends_with('\r')) {
            value.remove_suffix(1);
            position_ = end - 1;
        } else {
            position_ = end;
        }
        return std::string(value);
    }

    std::string quotedField() {
        const std::size_t begin = line_;
        std::string value;
        while (!atEnd()) {
            const char c = text_[position_++];
            if (c == '"' && !skip('"'))
                return value;
            if (c == '\n')
                ++line_;
            value += c;
        }
        line_ = begin;
        fail("a quote without its end");
    }

    [[noreturn]] void fail(const char* reason) const {
        throw platform::Failure(platform::invalidProcedureCall,
                                name_ + ":" + std::to_string(line_) + ": " + reason);
    }

    std::string_view text_;
    const std::string& name_;
    std::size_t position_ = 0;
    std::size_t line_ = 1;
};

}  // namespace

std::vector<CsvRow> parseCsv(std::string_view text, const std::string& name) {
    std::vector<CsvRow> rows;
    CsvReader reader(text, name);
    while (!reader.atEnd()) {
        CsvRow row = reader.row();
        if (row.fields.size() > 1 || !row.fields.front().empty())
            rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace host
