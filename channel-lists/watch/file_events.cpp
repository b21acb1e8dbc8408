#include "watch/file_events.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>

namespace channel_lists {
namespace {

constexpr int kWithoutEvents = 250;  // milliseconds between looks
constexpr std::uint32_t kEvents =
    IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB;

bool endsWaits(short events) { return (events & (POLLERR | POLLHUP | POLLNVAL)) != 0; }

}  // namespace

FileEvents::FileEvents(std::string const& file) : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    auto const slash = file.rfind('/');
    folder_ = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    name_ = slash == std::string::npos ? file : file.substr(slash + 1);
    isWatching();
}

FileEvents::~FileEvents() {
    if (events_ >= 0)
        close(events_);
}

// The folder, too, may be away for a while.
bool FileEvents::isWatching() {
    if (events_ >= 0 && watch_ < 0)
        watch_ = inotify_add_watch(events_, folder_.c_str(), kEvents);
    return watch_ >= 0;
}

FileEvents::Event FileEvents::wait(int milliseconds, int output) {
    if (!isWatching())
        milliseconds = std::min(milliseconds, kWithoutEvents);
    pollfd sources[] = {{output, 0, 0}, {events_, POLLIN, 0}};
    if (poll(sources, 2, milliseconds) <= 0)
        return Event::Nothing;
    if (endsWaits(sources[0].revents))
        return Event::NoReader;
    return takeEvents() ? Event::Touched : Event::Nothing;
}

bool FileEvents::takeEvents() {
    bool isOurs = false;
    alignas(inotify_event) char buffer[16 * (sizeof(inotify_event) + NAME_MAX + 1)];
    for (ssize_t size; (size = read(events_, buffer, sizeof buffer)) > 0;) {
        for (char const* at = buffer; at < buffer + size;) {
            inotify_event event;
            std::memcpy(&event, at, sizeof event);
            std::string const name = event.len == 0 ? "" : at + sizeof event;
            isOurs = isOurs || (event.mask & IN_Q_OVERFLOW) != 0 || name == name_ ||
                     name == name_ + "-journal" || name == name_ + "-wal";
            if ((event.mask & IN_IGNORED) != 0)
                watch_ = -1;
            at += sizeof event + event.len;
        }
    }
    return isOurs;
}

}  // namespace channel_lists
