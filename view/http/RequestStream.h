// A connection's stream for the HTTP library, with deadlines.
#pragma once

#include <httplib.h>
#include <poll.h>

#include <array>
#include <chrono>
#include <string>

namespace vantorel::view {

// Reads through a buffer. A request's head must be complete before a deadline, even if its bytes keep trickling in;
// once the request is admitted there is more time for its body and the response. After the deadline, and beyond the
// largest request size, reading and writing fail. The caller owns the socket.
class RequestStream : public httplib::Stream {
 public:
  using Clock = std::chrono::steady_clock;

  explicit RequestStream(int socket) : socket_(socket) {}

  // Waits for the next request's first byte, which starts the request's deadline; false if none comes in that time.
  bool awaitRequest(Clock::duration patience);

  // Extends the deadline for the body and the response.
  void admit();

  // Closes the sending side, and for a moment discards what the client still sends, so that the client can read the
  // response before the connection is reset.
  void finish();

  bool is_readable() const override { return at_ < filled_ || waitFor(POLLIN, deadline_); }
  bool is_writable() const override { return waitFor(POLLOUT, deadline_); }
  ssize_t read(char* data, size_t size) override;
  ssize_t write(const char* data, size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  socket_t socket() const override { return socket_; }

 private:
  bool waitFor(short event, Clock::time_point deadline) const;
  bool fill(Clock::time_point deadline);

  int socket_;
  Clock::time_point deadline_{};
  std::size_t taken_ = 0;  // bytes of the current request
  std::array<char, 16384> buffer_{};
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
};

}  // namespace vantorel::view
