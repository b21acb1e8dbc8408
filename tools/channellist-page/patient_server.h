// An HTTP server that no client holds up, nor makes take more memory than a request of the page.
#pragma once

#include <httplib.h>

namespace page {

constexpr std::size_t kMostBytes = 8 << 20;  // of a request: five lists of 20,000 are 2 MB

// httplib waits anew for every byte, and takes heads of any length. Here a request has its time and
// its size as a whole.
class PatientServer : public httplib::Server {
    bool process_and_close_socket(socket_t socket) override;
};

}  // namespace page
