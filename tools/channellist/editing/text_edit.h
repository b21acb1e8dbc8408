// The new content of a list, from a file or the user's editor.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "edit/merge.h"
#include "edit/seen_list.h"
#include "editing/editor.h"
#include "tool.h"

namespace tool {

// What a text is read against: the list, and what can join it.
struct Sight {
    SeenList seen;
    std::vector<Entry> joining;  // all services, for FAV1 to FAV4
};

// As the database is now. `word` names the list.
Sight look(std::string const& word);

// The text of a file, "-" for standard input.
std::string readText(std::string const& file);

// What a text may be that would else be refused.
struct Allowed {
    bool empty = false;
    bool missing = false;  // services that the database lacks: their lines are told and left out
};

// Throws Failure with everything that is wrong in the text, and for one without an entry;
// `source` names it.
std::vector<Entry> contentOf(Sight const& sight, std::string const& text, std::string const& source,
                             Allowed const& allowed);

// A list in the user's editor: what they wrote stays with them until `done`.
class EditorSession {
  public:
    // Opens the list in the editor, and again with the errors in comments as long as there are
    // some. None when the text is left as it was, or emptied to the last byte. Throws Failure when
    // errors are left in it.
    std::optional<std::vector<Entry>> edit(Sight const& sight);
    // Opens the list as both changes together make it, with remarks on what is at odds and the
    // user's own text below. None when it is left as it was.
    std::optional<std::vector<Entry>> resolve(Sight const& now, Merge const& merge);

    std::string const& path() const { return file_.path(); }
    // The text is not needed any more. One that is left as it was stays where an editor may still
    // be open on it.
    void done();

  private:
    std::optional<std::vector<Entry>> rounds(Sight const& sight, std::string shown);

    EditorFile file_;
    std::string text_;  // as the user left it, without our remarks
    bool isLeftAlone_ = false;
};

}  // namespace tool
