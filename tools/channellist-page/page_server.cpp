#include "page_server.h"

#include <cerrno>
#include <cstring>
#include <functional>

#include "database/time_limit.h"
#include "failure.h"
#include "library_messages/library_messages.h"
#include "patient_server.h"
#include "text/display_text.h"
#include "web_files.h"

namespace page {
namespace {

using channel_lists::Failure;

constexpr int kPort = 8017;        // always the same, so that unsaved work is found again
constexpr int kConnections = 256;  // at once; more wait
constexpr char kJson[] = "application/json";
// With what follows, httplib does not compress it: on one machine that costs more than it spares.
constexpr char kPlainJson[] = "application/json; charset=utf-8";

httplib::Headers const kHeaders = {
    {"Cache-Control", "no-store"},
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self';"
     " base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Referrer-Policy", "no-referrer"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
};

// The browser takes the cookie, and goes to the page by itself: a Strict cookie does not come along
// where a foreign page or file sent it here.
std::string entranceTo(std::string const& place) {
    return "<!doctype html><meta charset=utf-8><link rel=icon href=" + place +
           "icon.svg><meta http-equiv=refresh content='0;url=" + place +
           "'><title>Channels</title>";
}

Caller callerOf(httplib::Request const& request) {
    return {request.get_header_value("Host"), request.get_header_value("Origin"),
            request.get_header_value("Sec-Fetch-Site"), request.get_header_value("Cookie"),
            request.method != "GET"};
}

std::string textOf(Json const& value) { return channel_lists::dumpJson(value, -1); }

void refuse(httplib::Response& response, int status, std::string const& sentence) {
    response.status = status;
    response.set_content(textOf({{"error", sentence}}), kPlainJson);
}

std::string reasonOf(std::exception const& error) {
    if (channel_lists::TimeLimit::isReached())
        return channel_lists::TimeLimit::sentence();
    std::string sentence = error.what();
    for (std::string const& reason : channel_lists::messageReasons())
        sentence += "; " + reason;
    return channel_lists::displayLines(sentence);
}

void answer(httplib::Response& response, std::function<std::string()> const& work) {
    try {
        response.set_content(work(), kPlainJson);
    } catch (Malformed const& error) {
        refuse(response, 400, error.what());
    } catch (Json::exception const&) {
        refuse(response, 400, "this is no request of the page");
    } catch (std::exception const& error) {
        refuse(response, 503, reasonOf(error));
    }
}

int bindTo(httplib::Server& server, std::optional<int> port) {
    int const wanted = port.value_or(kPort);
    if (wanted != 0 && server.bind_to_port("127.0.0.1", wanted))
        return wanted;
    if (port.value_or(0) != 0)
        throw Failure("port " + std::to_string(wanted) + " cannot be had: " + std::strerror(errno));
    int const free = server.bind_to_any_port("127.0.0.1");
    if (free <= 0)
        throw Failure("no port of this machine is free");
    return free;
}

}  // namespace

PageServer::PageServer(ListServer& lists, std::optional<int> port)
    : lists_(lists),
      server_(std::make_unique<PatientServer>()),
      lastAsked_(std::chrono::steady_clock::now()) {
    server_->new_task_queue = [] { return new httplib::ThreadPool(kConnections); };
    server_->set_payload_max_length(kMostBytes);
    server_->set_keep_alive_max_count(1);
    server_->set_default_headers(kHeaders);
    // A second server must not share a port with the first.
    server_->set_socket_options([](auto socket) {
        int const yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    gate_ = std::make_unique<Gate>(bindTo(*server_, port));
    addFiles();
    addRequests();
}

PageServer::~PageServer() = default;

void PageServer::run() { server_->listen_after_bind(); }
void PageServer::stop() { server_->stop(); }

std::chrono::seconds PageServer::idleTime() const {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() -
                                                            lastAsked_.load());
}

// Before anything of a request but its head is read.
void PageServer::addFiles() {
    server_->set_pre_routing_handler([this](auto const& request, auto& response) {
        Caller const caller = callerOf(request);
        bool const bringsKey = request.method == "GET" && request.path == "/" &&
                               gate_->isKey(request.get_param_value("key"));
        Caller entering = caller;  // a link to the first address may stand anywhere
        if (bringsKey)
            entering.fetchSite.clear();
        if (!gate_->isAtHome(entering) || (!bringsKey && !gate_->hasSession(caller))) {
            refuse(response, 403, "open the address that \"channellist page\" has printed");
            return httplib::Server::HandlerResponse::Handled;
        }
        lastAsked_ = std::chrono::steady_clock::now();
        // httplib itself would read all of it first.
        if (request.template get_header_value<std::uint64_t>("Content-Length") > kMostBytes) {
            refuse(response, 413, "this is more than a request of the page can be");
            return httplib::Server::HandlerResponse::Handled;
        }
        if (!bringsKey)
            return httplib::Server::HandlerResponse::Unhandled;
        response.set_header("Set-Cookie", gate_->cookie());
        response.set_content(entranceTo(gate_->place()), "text/html");
        return httplib::Server::HandlerResponse::Handled;
    });
    for (WebFile const& file : kWebFiles)  // from a provider, httplib does not compress them either
        server_->Get(gate_->place() + file.path, [&file](auto const&, auto& response) {
            response.set_content_provider(
                file.size, file.type, [&file](std::size_t offset, std::size_t length, auto& sink) {
                    return sink.write(reinterpret_cast<char const*>(file.bytes) + offset, length);
                });
        });
}

void PageServer::addRequests() {
    std::string const api = gate_->place() + "api/";
    auto const get = [&](char const* name, auto work) {
        server_->Get(
            api + name,
            [work](auto const& request, auto& response) {
                answer(
                    response, [&] { return work(request); });
            });
    };
    get("mark", [this](auto const&) { return textOf({{"mark", lists_.mark()}}); });
    get(
        "lists",
        [this](auto const& request) {
            std::vector<std::string> uuids;
            for (auto const& [name, value] : request.params)
                if (name == "uuid")
                    uuids.push_back(value);
            return lists_.lists(uuids);
        });
    server_->Post(api + "save", [this](auto const& request, auto& response) {
        if (request.get_header_value("Content-Type") != kJson)
            return refuse(response, 400, "this is no request of the page");
        answer(response, [&] { return textOf(lists_.save(Json::parse(request.body))); });
    });
}

}  // namespace page
