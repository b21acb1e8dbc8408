#include "gate.h"

#include <sys/random.h>

#include <algorithm>

#include "failure.h"

namespace page {

std::string randomKey() {
    unsigned char bytes[16];
    if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes))
        throw channel_lists::Failure("the system gives no random numbers");
    std::string text;
    for (unsigned char const byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

bool isSame(std::string const& given, std::string const& secret) {
    unsigned int difference = given.size() == secret.size() ? 0 : 1;
    for (std::size_t i = 0; i < secret.size(); ++i) {
        auto const byte = static_cast<unsigned char>(i < given.size() ? given[i] : 0);
        difference |= byte ^ static_cast<unsigned char>(secret[i]);
    }
    return difference == 0;
}

std::string cookieIn(std::string const& header, std::string const& name) {
    for (std::size_t begin = 0; begin < header.size();) {
        std::size_t const end = std::min(header.find(';', begin), header.size());
        std::size_t const first = std::min(header.find_first_not_of(' ', begin), end);
        if (header.compare(first, name.size() + 1, name + "=") == 0)
            return header.substr(first + name.size() + 1, end - first - name.size() - 1);
        begin = end + 1;
    }
    return "";
}

Gate::Gate(int port)
    : port_(std::to_string(port)),
      key_(randomKey()),
      session_(randomKey()),
      place_("/" + randomKey() + "/") {}

std::string Gate::address() const { return "http://127.0.0.1:" + port_ + "/?key=" + key_; }

// Cookies are shared by all ports of a host: the name tells the servers apart.
std::string Gate::cookie() const {
    return "channellist-" + port_ + "=" + session_ + "; HttpOnly; SameSite=Strict; Path=" + place_;
}

bool Gate::isAtHome(Caller const& caller) const {
    std::string const port = port_ == "80" ? "" : ":" + port_;  // browsers leave out that one
    if (caller.host != "127.0.0.1" + port && caller.host != "localhost" + port)
        return false;
    bool const isOwn = caller.origin == "http://" + caller.host;
    if (caller.writes ? !isOwn : !caller.origin.empty() && !isOwn)
        return false;
    return caller.fetchSite.empty() || caller.fetchSite == "same-origin" ||
           (caller.fetchSite == "none" && !caller.writes);
}

bool Gate::hasSession(Caller const& caller) const {
    return isSame(cookieIn(caller.cookies, "channellist-" + port_), session_);
}

}  // namespace page
