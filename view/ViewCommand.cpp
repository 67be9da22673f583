#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "cli/base/CommandError.h"
#include "cli/base/Console.h"
#include "cli/base/Rows.h"
#include "cli/commands/Commands.h"
#include "view/Routes.h"
#include "view/session/StandInLayer.h"

namespace vantorel::view {

namespace {

// A view runs for hours and allocates and frees pictures of many sizes on many threads. By default the C library caches
// freed memory per thread, which keeps growing; with these settings a picture's memory goes back to the system when it
// is freed.
void handBackFreedMemory() {
  constexpr int kLeastMappedBytes = 128 << 10;
  constexpr int kMostKeptBytes = 1 << 20;
  constexpr int kArenas = 2;
  mallopt(M_MMAP_THRESHOLD, kLeastMappedBytes);
  mallopt(M_TRIM_THRESHOLD, kMostKeptBytes);
  mallopt(M_ARENA_MAX, kArenas);
}

bool hasScreen() {
  return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

// Runs xdg-open from the path, which passes the address to the desktop's browser and exits.
void openBrowser(const std::string& address) {
  std::string program = "xdg-open";
  std::string argument = address;
  const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // The browser must not inherit the signals that this command blocks.
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  pid_t process = 0;
  posix_spawnp(&process, program.c_str(), &actions, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
}

void tellAddress(const std::string& address, int port, bool opens) {
  std::array<char, 256> host{};
  gethostname(host.data(), host.size() - 1);
  fmt::print("{}\n", address);
  std::fflush(stdout);
  fmt::print(cli::console(),
             "vantorel: {}; Ctrl-C ends\n"
             "vantorel: from another machine: ssh -L {}:127.0.0.1:{} {}, and then this address there\n",
             opens ? "opening this address in the browser" : "open this address in a browser on this machine", port,
             port, host.data());
}

}  // namespace

}  // namespace vantorel::view

namespace vantorel::cli {

ExitCode runView(const ViewOptions& given, const std::stop_token& stop) {
  view::handBackFreedMemory();
  const view::StandInLayer stand_in(given);
  const ViewOptions& options = stand_in.options();
  limitRowThreads(options.threads);
  view::Session session(options);
  view::LocalServer server;
  view::addRoutes(server, session);
  const int port = server.bind("--port", options.port);
  const std::string address = fmt::format("http://127.0.0.1:{}{}", port, server.prefix());
  const bool opens = options.open_browser && view::hasScreen();
  view::tellAddress(address, port, opens);
  if (opens) {
    view::openBrowser(address);
  }
  bool cut_off = false;
  const std::stop_callback end_pictures(stop, [&] {
    cut_off = session.job().isRunning();
    session.pictures().close();
    session.job().cancel();
  });
  server.serve(stop);
  // Stopping is the normal end of a view; it only counts as an interruption if a rendering was running.
  return cut_off ? ExitCode::Interrupted : ExitCode::Done;
}

}  // namespace vantorel::cli
