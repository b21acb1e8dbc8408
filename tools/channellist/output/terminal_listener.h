// What a person at a terminal is told while a command is at work, on standard error.
#pragma once

#include "listener.h"

namespace tool {

class TerminalListener : public channel_lists::Listener {
  public:
    TerminalListener();
    ~TerminalListener() override;

    void note(std::string const& sentence) override;
    void waitingFor(std::string const& file) noexcept override;
    void progress(std::string const& task) noexcept override;
    void trace(std::string const& message) noexcept override;
};

// Why the library failed, by its own messages, behind the sentence of a command that failed.
void explainByMessages();

}  // namespace tool
