// An HTTP server for this machine's own browser.
#pragma once

#include <httplib.h>

#include <stop_token>
#include <string>

#include "view/http/Admission.h"
#include "view/http/Connections.h"
#include "view/http/RequestStream.h"

namespace vantorel::view {

// Listens on the loopback. Admission refuses requests before their bodies are read, slow clients time out
// (RequestStream), and idle ones make way for others (ConnectionThreads). Handlers are those of httplib::Server.
class LocalServer : public httplib::Server {
 public:
  LocalServer();

  // "/TOKEN/", the prefix of every path.
  const std::string& prefix() const { return admission_.prefix(); }

  // Binds to the port, or to any free one for 0, and returns it. Throws CommandError naming `option` if the port is not
  // available.
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
