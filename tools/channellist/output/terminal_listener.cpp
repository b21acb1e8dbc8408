#include "output/terminal_listener.h"

#include <unistd.h>

#include <iostream>

#include "library_messages/library_messages.h"
#include "message_writer.h"
#include "output/progress.h"
#include "text/display_text.h"
#include "tool.h"

namespace tool {

TerminalListener::TerminalListener() { setListener(this); }
TerminalListener::~TerminalListener() { setListener(nullptr); }

void TerminalListener::note(std::string const& sentence) {
    std::cerr << "channellist: " << displayLines(sentence) << "\n";
}

void TerminalListener::waitingFor(std::string const& file) noexcept {
    try {
        if (isatty(STDERR_FILENO) == 1)
            note("waiting for another process that uses " + file + " (Ctrl-C to stop)");
    } catch (std::exception const&) {
        return;  // no memory for a remark: the command does its work all the same
    }
}

void TerminalListener::progress(std::string const& task) noexcept {
    try {
        task.empty() ? endProgress() : showProgress("Looking at " + task);
    } catch (std::exception const&) {
        return;  // as above
    }
}

void TerminalListener::trace(std::string const& message) noexcept {
    try {
        orvdebug::writeMessage("%s", displayLines(message).c_str());
    } catch (std::exception const&) {
        orvdebug::writeMessage("channellist: no memory to show a message\n");
    }
}

void explainByMessages() {
    for (std::string const& reason : messageReasons())
        std::cerr << "channellist: the library says: " << displayText(reason) << "\n";
}

}  // namespace tool
