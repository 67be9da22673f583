// The server's routes.
#pragma once

#include "view/http/LocalServer.h"
#include "view/session/Session.h"

namespace vantorel::view {

// Adds the page's files, and the page's requests below api/. The session must outlive the call of serve().
void addRoutes(LocalServer& server, Session& session);

}  // namespace vantorel::view
