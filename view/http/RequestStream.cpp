#include "view/http/RequestStream.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "view/http/Admission.h"

namespace vantorel::view {

namespace {

constexpr std::chrono::seconds kHeadTime{5};
constexpr std::chrono::seconds kAdmittedTime{60};
constexpr std::chrono::milliseconds kFarewellTime{500};
constexpr std::size_t kMaxHeadBytes = 64u << 10;
constexpr std::size_t kMaxRequestBytes = kMaxHeadBytes + kMaxBodyBytes;

}  // namespace

bool RequestStream::waitFor(short event, Clock::time_point deadline) const {
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      return false;
    }
    pollfd waiting{socket_, event, 0};
    const int ready = poll(&waiting, 1, static_cast<int>(left));
    if (ready > 0) {
      return true;
    }
    if (ready == 0 || errno != EINTR) {
      return false;
    }
  }
}

bool RequestStream::fill(Clock::time_point deadline) {
  if (!waitFor(POLLIN, deadline)) {
    return false;
  }
  const ssize_t got = recv(socket_, buffer_.data(), buffer_.size(), 0);
  at_ = 0;
  filled_ = got > 0 ? static_cast<std::size_t>(got) : 0;
  return got > 0;
}

bool RequestStream::awaitRequest(Clock::duration patience) {
  taken_ = 0;
  const bool begun = at_ < filled_ || fill(Clock::now() + patience);
  deadline_ = Clock::now() + kHeadTime;
  return begun;
}

void RequestStream::admit() {
  deadline_ = Clock::now() + kAdmittedTime;
}

void RequestStream::finish() {
  ::shutdown(socket_, SHUT_WR);
  const Clock::time_point end = Clock::now() + kFarewellTime;
  while (fill(end)) {
  }
}

ssize_t RequestStream::read(char* data, size_t size) {
  if (taken_ >= kMaxRequestBytes || (at_ == filled_ && !fill(deadline_))) {
    return -1;
  }
  const std::size_t count = std::min({size, filled_ - at_, kMaxRequestBytes - taken_});
  std::memcpy(data, buffer_.data() + at_, count);
  at_ += count;
  taken_ += count;
  return static_cast<ssize_t>(count);
}

ssize_t RequestStream::write(const char* data, size_t size) {
  if (!waitFor(POLLOUT, deadline_)) {
    return -1;
  }
  return send(socket_, data, size, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void RequestStream::get_remote_ip_and_port(std::string& ip, int& port) const {
  get_local_ip_and_port(ip, port);
}

// The server listens only on the loopback.
void RequestStream::get_local_ip_and_port(std::string& ip, int& port) const {
  ip = "127.0.0.1";
  port = 0;
}

}  // namespace vantorel::view
