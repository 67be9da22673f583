// An HTTP server for this machine's own browser.
#pragma once

#include <httplib.h>

#include <stop_token>
#include <string>

#include "view/http/Admission.h"
#include "view/http/Connections.h"
#include "view/http/RequestStream.h"

namespace vantorel::view {

// Listens on the loopback. What Admission refuses gets no further than its head, slow clients run out of time
// (RequestStream), and silent ones make way (ConnectionThreads). Handlers are those of httplib::Server.
class LocalServer : public httplib::Server {
 public:
  LocalServer();

  // "/TOKEN/": what every path begins with.
  const std::string& prefix() const { return admission_.prefix(); }

  // Takes the port, any free one for 0, and returns it. Throws CommandError naming `option` where it cannot be had.
  int bind(const std::string& option, int port);

  // Serves until the token is triggered.
  void serve(const std::stop_token& stop);

 private:
  bool process_and_close_socket(socket_t socket) override;
  bool answerNext(RequestStream& stream, Connections::Entry& entry);

  Admission admission_;
  Connections connections_;
};

// The answer to a request that cannot be served: {"error": message}.
void setError(httplib::Response& response, int status, const std::string& message);

}  // namespace vantorel::view
