// A connection as the HTTP library reads and writes it, with an end to its patience.
#pragma once

#include <httplib.h>
#include <poll.h>

#include <array>
#include <chrono>
#include <string>

namespace vantorel::view {

// Reads through a buffer. A request's head must have come before a deadline, however its bytes are spread over the time
// until then; once it is admitted there is more time for its body and its answer. After the deadline, and beyond the
// largest request, reading and writing fail. The socket is the caller's.
class RequestStream : public httplib::Stream {
 public:
  using Clock = std::chrono::steady_clock;

  explicit RequestStream(int socket) : socket_(socket) {}

  // Waits for the next request's first byte; false when none comes in that time. The request's own time begins then.
  bool awaitRequest(Clock::duration patience);

  // Grants the time for the body and the answer.
  void admit();

  // Sends the end of the stream, and takes what the client still sends for a moment, so that it gets to read the
  // answer.
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
  std::size_t taken_ = 0;  // bytes of the present request
  std::array<char, 16384> buffer_{};
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
};

}  // namespace vantorel::view
