#include "text/display_text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdio>

#include "text/invisible.h"

namespace channel_lists {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr char kEllipsis[] = "\xE2\x80\xA6";

// Calls visit(bytes, length, character) for each character; the length is 1 and the character -1
// where the bytes are no UTF-8.
template <class Visit>
void forEachCharacter(std::string const& text, Visit visit) {
    auto const* const bytes = reinterpret_cast<utf8proc_uint8_t const*>(text.data());
    auto const size = static_cast<utf8proc_ssize_t>(text.size());
    for (utf8proc_ssize_t at = 0; at < size;) {
        utf8proc_int32_t character = -1;
        utf8proc_ssize_t const length = utf8proc_iterate(bytes + at, size - at, &character);
        bool const isValid = length > 0;
        visit(text.data() + at, static_cast<std::size_t>(isValid ? length : 1),
              isValid ? character : -1);
        at += isValid ? length : 1;
    }
}

std::size_t widthOf(utf8proc_int32_t character) {
    return character < 0 ? 1U : static_cast<std::size_t>(utf8proc_charwidth(character));
}

bool isControl(utf8proc_int32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

void appendEscape(std::string& text, char const* format, utf8proc_int32_t character) {
    char escape[16];
    std::snprintf(escape, sizeof escape, format, static_cast<unsigned int>(character));
    text += escape;
}

// Each part keeps what stands of the separator before its blank.
std::vector<std::string> split(std::string const& text, std::string const& separator) {
    std::vector<std::string> parts;
    std::size_t at = 0;
    for (std::size_t end; (end = text.find(separator, at)) != std::string::npos;) {
        parts.push_back(text.substr(at, end - at + separator.size() - 1));
        at = end + separator.size();
    }
    parts.push_back(text.substr(at));
    return parts;
}

void addPiece(std::vector<std::string>& lines, std::string const& piece, std::size_t width) {
    std::string const longer = lines.back().empty() ? piece : lines.back() + " " + piece;
    if (displayWidth(longer) <= width) {
        lines.back() = longer;
        return;
    }
    if (!lines.back().empty())
        lines.emplace_back();
    std::size_t used = 0;
    forEachCharacter(piece, [&](char const* bytes, std::size_t length, utf8proc_int32_t character) {
        used += widthOf(character);
        if (used > width && !lines.back().empty()) {
            lines.emplace_back();
            used = widthOf(character);
        }
        lines.back().append(bytes, length);
    });
}

}  // namespace

bool isInvisible(std::int32_t character) {
    return character == 0x200B || character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0x061C ||
           character == 0xFEFF || (character >= 0xE0000 && character <= 0xE007F);
}

std::size_t displayWidth(std::string const& text) {
    std::size_t width = 0;
    forEachCharacter(text, [&](char const*, std::size_t, utf8proc_int32_t character) {
        width += widthOf(character);
    });
    return width;
}

std::string cutText(std::string const& text, std::size_t width) {
    if (displayWidth(text) <= width)
        return text;
    std::string shown;
    std::size_t used = 1;  // of the ellipsis
    bool isFull = false;
    forEachCharacter(text, [&](char const* bytes, std::size_t length, utf8proc_int32_t character) {
        used += widthOf(character);
        isFull = isFull || used > width;
        if (!isFull)
            shown.append(bytes, length);
    });
    return shown + kEllipsis;
}

std::vector<std::string> wrapText(std::string const& text, std::size_t width) {
    if (displayWidth(text) <= width)
        return {text};
    std::vector<std::string> lines(1);
    for (std::string const& item : split(text, ", "))
        for (std::string const& piece :
             displayWidth(item) <= width ? std::vector<std::string>{item} : split(item, " "))
            addPiece(lines, piece, width);
    return lines;
}

std::string displayText(std::string const& text) {
    std::string shown;
    forEachCharacter(text, [&](char const* bytes, std::size_t length, utf8proc_int32_t character) {
        if (character < 0)
            shown += kReplacement;
        else if (isControl(character))
            appendEscape(shown, "\\x%02x", character);
        else if (isInvisible(character))
            appendEscape(shown, "\\u%04x", character);
        else
            shown.append(bytes, length);
    });
    return shown;
}

std::string displayLines(std::string const& text) {
    std::string shown;
    for (std::size_t at = 0; at <= text.size();) {
        std::size_t const end = std::min(text.find('\n', at), text.size());
        shown += (at == 0 ? "" : "\n") + displayText(text.substr(at, end - at));
        at = end + 1;
    }
    return shown;
}

std::string joined(std::vector<std::string> const& words, char const* separator) {
    std::string text;
    for (std::string const& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

}  // namespace channel_lists
