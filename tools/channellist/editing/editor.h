// A text in the user's editor.
#pragma once

#include <string>

namespace tool {

// A file of this run. Unless `remove` was called it stays, and the end of the object says where, so
// that nobody's work is lost.
class EditorFile {
  public:
    EditorFile();
    ~EditorFile();
    EditorFile(EditorFile const&) = delete;
    EditorFile& operator=(EditorFile const&) = delete;

    // What $VISUAL, $EDITOR or else vi makes of the text. Throws Failure when the editor fails.
    std::string edit(std::string const& text);
    void remove();

  private:
    std::string path_;  // "" once it is removed
};

}  // namespace tool
