#include "output/text_table.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr char kGap[] = "  ";

// The terminal's character set, whatever the locale of the caller, for the life of the object.
class Utf8Scope {
  public:
    Utf8Scope() {
        static locale_t const utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        if (utf8 != nullptr)
            before_ = uselocale(utf8);
    }
    ~Utf8Scope() {
        if (before_ != nullptr)
            uselocale(before_);
    }
    Utf8Scope(Utf8Scope const&) = delete;
    Utf8Scope& operator=(Utf8Scope const&) = delete;

  private:
    locale_t before_ = nullptr;
};

// Calls visit(bytes, length, character) for each character; the length is 1 and the character -1
// where the bytes are no UTF-8.
template <class Visit>
void forEachCharacter(std::string const& text, Visit visit) {
    Utf8Scope const scope;
    char const* at = text.data();
    char const* const end = at + text.size();
    while (at < end) {
        wchar_t character = 0;
        mbstate_t state = {};
        std::size_t length = mbrtowc(&character, at, static_cast<std::size_t>(end - at), &state);
        bool const valid =
            length != static_cast<std::size_t>(-1) && length != static_cast<std::size_t>(-2);
        length = valid ? std::max<std::size_t>(length, 1) : 1;
        visit(at, length, valid ? static_cast<long>(character) : -1L);
        at += length;
    }
}

bool isControl(long character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

}  // namespace

std::size_t displayWidth(std::string const& text) {
    std::size_t width = 0;
    forEachCharacter(text, [&](char const*, std::size_t, long character) {
        int const columns = character < 0 ? 1 : wcwidth(static_cast<wchar_t>(character));
        width += columns < 0 ? 1U : static_cast<std::size_t>(columns);
    });
    return width;
}

std::string displayText(std::string const& text) {
    std::string shown;
    forEachCharacter(text, [&](char const* bytes, std::size_t length, long character) {
        if (character < 0) {
            shown += kReplacement;
        } else if (isControl(character)) {
            char escape[16];
            std::snprintf(escape, sizeof escape, "\\x%02x",
                          static_cast<unsigned int>(character) & 0xFFU);
            shown += escape;
        } else {
            shown.append(bytes, length);
        }
    });
    return shown;
}

TextTable::TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {
    for (Column const& column : columns_)
        widths_.push_back(displayWidth(column.name));
}

void TextTable::add(std::vector<std::string> texts) {
    texts.resize(columns_.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        texts[i] = displayText(texts[i]);
        widths_[i] = std::max(widths_[i], displayWidth(texts[i]));
    }
    rows_.push_back(std::move(texts));
}

void TextTable::print(std::ostream& out) const {
    std::vector<std::string> names, rules;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        names.push_back(columns_[i].name);
        rules.emplace_back(widths_[i], '-');
    }
    printRow(out, names);
    printRow(out, rules);
    for (auto const& row : rows_)
        printRow(out, row);
}

void TextTable::printRow(std::ostream& out, std::vector<std::string> const& texts) const {
    std::string line;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        std::string const padding(widths_[i] - displayWidth(texts[i]), ' ');
        line += i == 0 ? "" : kGap;
        line += columns_[i].align == Align::Right ? padding + texts[i] : texts[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
}

}  // namespace tool
