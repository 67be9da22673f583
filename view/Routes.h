// Which address the server answers how.
#pragma once

#include "view/http/LocalServer.h"
#include "view/session/Session.h"

namespace vantorel::view {

// The page's files, and below api/ what the page asks for. The session must outlive the server's serving.
void addRoutes(LocalServer& server, Session& session);

}  // namespace vantorel::view
