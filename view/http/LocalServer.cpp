#include "view/http/LocalServer.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "cli/base/CommandError.h"

namespace vantorel::view {

namespace {

constexpr std::chrono::seconds kIdleTime{60};
constexpr const char* kLoopback = "127.0.0.1";

// Allows only the page's own files, and pictures that it creates itself.
constexpr const char* kContentSecurityPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

const char* refusalText(int status) {
  switch (status) {
    case 403:
      return "not for this address; open the address that vantorel view has printed, with its token";
    case 405:
      return "only GET and POST are answered";
    case 411:
      return "the length of the body is missing; send Content-Length";
    case 413:
      return "the body is too large; send at most 8 MiB";
    default:
      return "the request is malformed";
  }
}

// Unlike the library's defaults, these do not let another program listen on the same port.
void setSocketOptions(int socket) {
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

}  // namespace

void setError(httplib::Response& response, int status, const std::string& message) {
  response.status = status;
  const nlohmann::json body{{"error", message}};
  response.set_content(body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace), "application/json");
}

LocalServer::LocalServer() : admission_(randomToken()) {
  new_task_queue = [this] { return new ConnectionThreads(connections_); };
  set_socket_options(setSocketOptions);
  set_tcp_nodelay(true);
  set_payload_max_length(kMaxBodyBytes);
  set_default_headers({{"Content-Security-Policy", kContentSecurityPolicy},
                       {"X-Content-Type-Options", "nosniff"},
                       {"X-Frame-Options", "DENY"},
                       {"Referrer-Policy", "no-referrer"},
                       {"Cross-Origin-Resource-Policy", "same-origin"},
                       {"Cross-Origin-Opener-Policy", "same-origin"},
                       {"Cache-Control", "no-store"}});
  set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    const int status = admission_.refusal(request);
    if (status == 0) {
      return HandlerResponse::Unhandled;
    }
    setError(response, status, refusalText(status));
    return HandlerResponse::Handled;
  });
  set_error_handler([](const httplib::Request&, httplib::Response& response) {
    if (response.body.empty()) {
      setError(response, response.status, response.status == 404 ? "not found" : refusalText(400));
    }
  });
}

int LocalServer::bind(const std::string& option, int port) {
  const int bound = port == 0 ? bind_to_any_port(kLoopback) : (bind_to_port(kLoopback, port) ? port : -1);
  if (bound <= 0) {
    throw cli::fileFailure(option, port == 0 ? std::string("no port is free; close other programs")
                                             : fmt::format("{} is in use or reserved; give another port, or 0 for any "
                                                           "free one",
                                                           port));
  }
  return bound;
}

void LocalServer::serve(const std::stop_token& stop) {
  const std::stop_callback end(stop, [this] { this->stop(); });
  if (!stop.stop_requested()) {
    listen_after_bind();
  }
}

bool LocalServer::process_and_close_socket(socket_t socket) {
  {
    Connections::Entry entry(connections_, socket);
    RequestStream stream(socket);
    while (stream.awaitRequest(kIdleTime) && answerNext(stream, entry)) {
    }
    stream.finish();
  }
  ::close(socket);
  return true;
}

// Returns whether another request may follow: not after one whose head was malformed or whose body was left unread.
bool LocalServer::answerNext(RequestStream& stream, Connections::Entry& entry) {
  bool closed = false;
  bool admitted = false;
  const bool answered = process_request(stream, false, closed, [&](httplib::Request& request) {
    admitted = admission_.refusal(request) == 0;
    if (admitted) {
      entry.setWaiting(false);
      stream.admit();
    }
  });
  entry.setWaiting(true);
  return answered && admitted && !closed;
}

}  // namespace vantorel::view
