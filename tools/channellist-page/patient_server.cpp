#include "patient_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace page {
namespace {

using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

// A browser of this machine needs milliseconds.
constexpr seconds kHeadTime{2}, kBodyTime{10}, kAnswerTime{20}, kLeavingTime{1};
constexpr std::size_t kMostHeadBytes = 64 << 10;

class Connection : public httplib::Stream {
  public:
    explicit Connection(socket_t socket) : socket_(socket), end_(Clock::now() + kHeadTime) {}

    bool is_readable() const override { return begin_ < filled_ || waitFor(POLLIN); }
    bool is_writable() const override { return waitFor(POLLOUT); }

    ssize_t read(char* to, std::size_t size) override {
        if (begin_ == filled_ && !fill())
            return -1;
        std::size_t const count = std::min(size, filled_ - begin_);
        std::memcpy(to, buffer_ + begin_, count);
        begin_ += count;
        for (std::size_t i = 0; i < count && isHead_; ++i)
            lookForTheEndOfTheHead(to[i]);
        return (taken_ += count) <= (isHead_ ? kMostHeadBytes : kMostBytes)
                   ? static_cast<ssize_t>(count)
                   : -1;
    }

    ssize_t write(char const* from, std::size_t size) override {
        if (!isAnswer_)
            end_ = Clock::now() + kAnswerTime;
        isAnswer_ = true;
        for (;;) {
            ssize_t const count = send(socket_, from, size, MSG_DONTWAIT | MSG_NOSIGNAL);
            if (count >= 0 || (errno != EAGAIN && errno != EINTR) || !waitFor(POLLOUT))
                return count;
        }
    }

    // What the client still sends is read for a moment: closing over it would take the answer away.
    void leave() {
        shutdown(socket_, SHUT_WR);
        end_ = Clock::now() + kLeavingTime;
        while (fill())
            ;
    }

    // Nobody asks who it is: all are of this machine.
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}
    socket_t socket() const override { return socket_; }

  private:
    bool waitFor(short events) const {
        using std::chrono::milliseconds;
        pollfd one = {socket_, events, 0};
        for (;;) {
            auto const left = std::chrono::duration_cast<milliseconds>(end_ - Clock::now()).count();
            int const ready = left <= 0 ? 0 : poll(&one, 1, static_cast<int>(left));
            if (ready >= 0 || errno != EINTR)
                return ready > 0;
        }
    }

    bool fill() {
        ssize_t const count = waitFor(POLLIN) ? recv(socket_, buffer_, sizeof buffer_, 0) : -1;
        begin_ = 0;
        filled_ = count > 0 ? static_cast<std::size_t>(count) : 0;
        return count > 0;
    }

    // An empty line; only what ends one for httplib, too, does so here.
    void lookForTheEndOfTheHead(char byte) {
        bool const isEnd = byte == '\n' && lineLength_ == 1 && last_ == '\r';
        lineLength_ = byte == '\n' ? 0 : lineLength_ + 1;
        last_ = byte;
        if (!isEnd)
            return;
        isHead_ = false;
        end_ += kBodyTime;
    }

    socket_t socket_;
    Clock::time_point end_;  // of what it does now
    char buffer_[16 << 10];
    std::size_t begin_ = 0, filled_ = 0, taken_ = 0, lineLength_ = 0;
    char last_ = 0;
    bool isHead_ = true, isAnswer_ = false;
};

}  // namespace

bool PatientServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket);
    bool isClosed = false;
    bool const isDone = process_request(connection, true, isClosed, [](httplib::Request& request) {
        // The page asks for nothing in parts and sends nothing packed: a short request could
        // make very much of either.
        request.ranges.clear();
        request.headers.erase("Content-Encoding");
    });
    connection.leave();
    close(socket);
    return isDone;
}

}  // namespace page
