#include "editing/editor.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include "failure.h"
#include "text/display_text.h"
#include "tool.h"

namespace tool {
namespace {

// No person opens, reads and closes a text in less.
constexpr std::chrono::milliseconds kFastest{1000};

std::string environment(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

// The variables hold a command of the shell, as in other tools that open an editor.
std::string editorCommand() {
    for (char const* name : {"VISUAL", "EDITOR"})
        if (std::string command = environment(name); !command.empty())
            return command;
    return "vi";
}

std::string quoted(std::string const& path) {
    std::string text = "'";
    for (char const c : path)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

}  // namespace

EditorFile::EditorFile() {
    std::string const folder = environment("TMPDIR");
    std::string path = (folder.empty() ? "/tmp" : folder) + "/channellist-XXXXXX.txt";
    int const file = mkstemps(path.data(), 4);
    if (file < 0)
        throw Failure("cannot make " + path + ": " + std::strerror(errno));
    close(file);
    path_ = path;
}

EditorFile::~EditorFile() {
    struct stat file = {};
    if (!path_.empty() && stat(path_.c_str(), &file) == 0 && S_ISREG(file.st_mode))
        std::cerr << "channellist: your text is kept in " << displayText(path_) << "\n";
}

// Whole or not at all: what the user wrote stays when there is no room for another text.
void EditorFile::write(std::string const& text) const {
    std::string unfinished = path_ + ".XXXXXX";  // no name that others could lay a link at
    int const file = mkstemp(unfinished.data());
    std::FILE* const out = file < 0 ? nullptr : fdopen(file, "w");
    bool const isWritten =
        out != nullptr && std::fwrite(text.data(), 1, text.size(), out) == text.size();
    if ((out != nullptr && std::fclose(out) != 0) || !isWritten ||
        rename(unfinished.c_str(), path_.c_str()) != 0) {
        std::string const reason = std::strerror(errno);
        unlink(unfinished.c_str());
        throw Failure("cannot write " + path_ + ": " + reason);
    }
}

std::string EditorFile::edit(std::string const& text) {
    write(text);
    std::string const command = editorCommand();
    std::cout.flush();
    auto const began = std::chrono::steady_clock::now();
    int const status = std::system((command + " " + quoted(path_)).c_str());
    cameBackAtOnce_ = std::chrono::steady_clock::now() - began < kFastest;
    if (status != 0)
        throw Failure("the editor \"" + command + "\" failed; nothing is written");
    std::ifstream file(path_);
    std::string edited{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad())
        throw Failure("cannot read " + path_);
    return edited;
}

void EditorFile::remove() {
    unlink(path_.c_str());
    path_.clear();
}

}  // namespace tool
