// The content that a text asks of a list.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "lists/list_text.h"

namespace channel_lists {

struct TextOrder {
    std::vector<Entry> entries;      // the stored ones in their order, then those that join
    std::vector<TextError> errors;   // when there are any, `entries` says nothing
    std::vector<std::string> notes;  // for the reader
};

// `stored` is the list's content, `all` what can join a FAV list. Numbers that entries keep are
// dealt out again in the order of the lines; one that another line asks for moves on to the next
// that is free; numbers that hold are dealt to none but their own lines. Hidden entries occupy no
// number. Names are found, and never changed.
TextOrder orderByText(List const& list, std::vector<Entry> const& stored,
                      std::vector<Entry> const& all, std::set<std::int64_t> const& reserved,
                      ListText const& text);

}  // namespace channel_lists
