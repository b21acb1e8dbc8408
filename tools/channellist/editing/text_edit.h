// The new content of a list, from a file or the user's editor.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "editing/editor.h"
#include "lists/list_content.h"
#include "tool.h"

namespace tool {

// `file` is "-" for standard input. Throws Failure with everything that is wrong in the text.
std::vector<Entry> contentFromFile(List const& list, std::vector<Entry> const& before,
                                   std::string const& file);

// Opens the list in the editor, and again with the errors in comments as long as there are some.
// None when the text is left as it was, or emptied to the last byte. Throws Failure when errors are
// left in it, or the list has changed in the database meanwhile.
std::optional<std::vector<Entry>> contentFromEditor(List const& list,
                                                    std::vector<Entry> const& before,
                                                    EditorFile& file);

// Shows what would change and asks, where there is a terminal to ask on; else true.
bool confirm(List const& list, std::vector<Entry> const& before, std::vector<Entry> const& after);

}  // namespace tool
