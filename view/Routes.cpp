#include "view/Routes.h"

#include <exception>
#include <functional>
#include <new>

#include "cli/base/CommandError.h"
#include "view/Page.h"

namespace vantorel::view {

namespace {

using httplib::Request;
using httplib::Response;
using nlohmann::json;

constexpr int kNoContent = 204;
constexpr int kUnprocessable = 422;
constexpr int kFailed = 500;

void setJson(Response& response, const json& body) {
  response.set_content(body.dump(-1, ' ', false, json::error_handler_t::replace), "application/json");
}

// Runs a request's handler and converts its exceptions to errors that the page shows. A picture request that was
// superseded by a later one is not an error: its response has no content.
httplib::Server::Handler guarded(std::function<void(const Request&, Response&)> answer) {
  return [answer = std::move(answer)](const Request& request, Response& response) {
    try {
      answer(request, response);
    } catch (const cli::CommandError& error) {
      if (error.code() == cli::ExitCode::Interrupted) {
        response.status = kNoContent;
      } else {
        setError(response, kUnprocessable, error.text());
      }
    } catch (const std::bad_alloc&) {
      setError(response, kFailed, "out of memory; close other programs");
    } catch (const std::exception& error) {
      setError(response, kFailed, error.what());
    }
  };
}

httplib::Server::Handler answering(std::function<json(const json& body)> answer) {
  return guarded([answer = std::move(answer)](const Request& request, Response& response) {
    setJson(response, answer(parseBody(request.body)));
  });
}

httplib::Server::Handler showing(std::function<std::string(const json& body)> picture) {
  return guarded([picture = std::move(picture)](const Request& request, Response& response) {
    response.set_content(picture(parseBody(request.body)), "application/octet-stream");
  });
}

void addPage(LocalServer& server) {
  for (const PageFile& file : pageFiles()) {
    const std::string name = file.name == "index.html" ? "" : std::string(file.name);
    server.Get(server.prefix() + name, [&file](const Request&, Response& response) {
      response.set_content(file.content.data(), file.content.size(), std::string(file.type));
    });
  }
}

}  // namespace

void addRoutes(LocalServer& server, Session& session) {
  const std::string api = server.prefix() + "api/";
  addPage(server);
  server.Get(api + "shot",
             guarded([&](const Request&, Response& response) { setJson(response, session.description()); }));
  server.Post(api + "backdrop", showing([&](const json& body) {
                return session.pictures().backdrop(frameOf(body), regionOf(body, session.frameSize()));
              }));
  server.Post(api + "draft", showing([&](const json& body) {
                return session.pictures().draft(frameOf(body), cornersOf(body), regionOf(body, session.frameSize()));
              }));
  server.Post(api + "picture", showing([&](const json& body) {
                return session.pictures().full(frameOf(body), trackOf(body), regionOf(body, session.frameSize()));
              }));
  server.Post(api + "save", answering([&](const json& body) { return session.save(body); }));
  server.Post(api + "reload", answering([&](const json&) { return session.reload(); }));
  server.Post(api + "command", answering([&](const json& body) { return session.command(body); }));
  server.Post(api + "render", answering([&](const json& body) { return session.render(body); }));
  server.Get(api + "render",
             guarded([&](const Request&, Response& response) { setJson(response, session.job().state()); }));
  server.Post(api + "cancel", answering([&](const json&) {
                session.job().cancel();
                return session.job().state();
              }));
}

}  // namespace vantorel::view
