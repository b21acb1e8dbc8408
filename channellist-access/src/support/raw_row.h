// Access to the columns of one SQL row by name.
#ifndef CHANNELLIST_SUPPORT_RAW_ROW_H
#define CHANNELLIST_SUPPORT_RAW_ROW_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace channellist {

// Views the texts of one row, which lives longer, out of SQLite's columns or a row of strings. A
// row is read once, and many of its texts never: copying or measuring all of them would cost more
// than converting the row. Every text is ended by a null character. `Column` numbers the columns.
template <typename Column>
class RawRow {
  public:
    // A null among the values is the empty text.
    RawRow(int count, char const* const* values)
        : size_(count > 0 ? static_cast<std::size_t>(count) : 0), values_(values) {}
    explicit RawRow(std::vector<std::string> const& row)
        : size_(row.size()), strings_(row.data()) {}

    std::size_t size() const { return size_; }

    std::string_view text(Column column) const {
        auto const index = static_cast<std::size_t>(column);
        if (values_ == nullptr)
            return strings_[index];
        return values_[index] == nullptr ? std::string_view("") : std::string_view(values_[index]);
    }

    char const* cText(Column column) const { return text(column).data(); }

  protected:
    // SQLite's text; null where it has none, and in a row of strings.
    char const* value(Column column) const {
        return values_ == nullptr ? nullptr : values_[static_cast<std::size_t>(column)];
    }

  private:
    std::size_t size_;
    char const* const* values_ = nullptr;
    std::string const* strings_ = nullptr;  // in their place
};

}  // namespace channellist

#endif
