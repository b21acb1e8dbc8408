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

    std::string const& path() const { return path_; }
    // What $VISUAL, $EDITOR or else vi makes of the text. Throws Failure when the text cannot be
    // written, and the file is as it was, or when the editor fails.
    std::string edit(std::string const& text);
    // Whether the editor came back as fast as one that works on in a window of its own.
    bool cameBackAtOnce() const { return cameBackAtOnce_; }
    void remove();

  private:
    void write(std::string const& text) const;

    std::string path_;  // "" once it is removed
    bool cameBackAtOnce_ = false;
};

}  // namespace tool
