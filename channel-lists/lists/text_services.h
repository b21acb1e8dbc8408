// Finds the services that the lines of a text mean.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "lists/list_text.h"

namespace channel_lists {

class TextServices {
  public:
    // Entries that stand in both are those of `stored`. They have to outlive the object.
    TextServices(std::vector<Entry> const& stored, std::vector<Entry> const& all);

    // By key when the line is as it was printed; by triplet, among several of them by key or name;
    // by key when the name fits, too, or when nothing else is given; else by name, in whatever
    // case. So a text finds its services again in a database of another scan, where the keys are
    // others. Null with a sentence in `error` when no service or none alone fits.
    Entry const* find(TextLine const& line, std::string& error) const;
    // Whether no service fits at all.
    bool hasNone(TextLine const& line) const;

  private:
    using Places = std::multimap<std::string, Entry const*>;

    void add(Entry const& entry);
    // What fits the line: one, several, or none.
    std::vector<Entry const*> fitting(TextLine const& line) const;
    Entry const* withKey(TextLine const& line) const;
    std::vector<Entry const*> called(std::string const& name) const;
    std::string several(std::string const& word, std::vector<Entry const*> const& services) const;
    std::string none(TextLine const& line, Entry const* keyed) const;

    std::map<std::int64_t, Entry const*> byKey_;
    Places byTriplet_;
    Places byName_;  // as the text shows them, case aside
    std::map<unsigned int, Entry const*> inAll_;
    mutable std::size_t suggestions_ = 0;  // they take their time in long texts
};

}  // namespace channel_lists
