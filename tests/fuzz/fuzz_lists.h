// A list with odd entries for the targets of what people write about lists, and what holds of it.
#pragma once

#include <string>

#include "lists/list_text.h"

namespace fuzz {

// Shown, hidden and unnumbered entries, one service that stands twice, names like words of the
// texts.
std::vector<channel_lists::Entry> storedEntries();

// What can join: the services of the list, and some more.
std::vector<channel_lists::Entry> allEntries();

std::set<std::int64_t> reservedNumbers();

// Shown entries have numbers of their own that a request can carry and no OTT channel has, but for
// what `before` holds.
void expectSound(std::vector<channel_lists::Entry> const& before,
                 std::vector<channel_lists::Entry> const& after);

// Brings the list to what the text asks, as a FAV list and as another one, and expects that the
// text of the result changes nothing.
void expectOrders(channel_lists::ListText const& text);

}  // namespace fuzz
