// Who may speak with the page's server.
#pragma once

#include <string>

namespace page {

// 128 bits of the system's random numbers, as 32 hexadecimal digits. Throws channel_lists::Failure.
std::string randomKey();

// Takes the same time for every `given` of one length.
bool isSame(std::string const& given, std::string const& secret);

// The value of a cookie of that name; "" without one.
std::string cookieIn(std::string const& header, std::string const& name);

// What of a request decides whether it comes in.
struct Caller {
    std::string host, origin, fetchSite, cookies;
    bool writes = false;
};

// The first address holds a key, which the browser changes for a session of its own; every other
// request shows that session's cookie. Browsers send a cookie to every port of a host, and another
// user may listen there: they send this one only below a place that nobody else knows. The page is
// the only one that writes: the browser names the page that a request comes from, and a foreign
// name that leads to this machine is not ours.
class Gate {
  public:
    explicit Gate(int port);

    std::string address() const;                         // with the key
    std::string const& place() const { return place_; }  // of the page: "/5f3c.../"
    bool isKey(std::string const& given) const { return isSame(given, key_); }
    // Of the answer to the key.
    std::string cookie() const;

    // Whether the request was made by a browser that knows this server by its name, and by no
    // foreign page.
    bool isAtHome(Caller const& caller) const;
    bool hasSession(Caller const& caller) const;

  private:
    std::string port_, key_, session_, place_;
};

}  // namespace page
