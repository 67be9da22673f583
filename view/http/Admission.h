// Access checks on a request's head, made before anything else of the request is read.
#pragma once

#include <httplib.h>

#include <string>

namespace vantorel::view {

constexpr std::size_t kMaxBodyBytes = 8u << 20;

// Admits requests for paths below /TOKEN/ that come from this machine's own page. Safe to use from several threads.
class Admission {
 public:
  explicit Admission(std::string token) : prefix_('/' + std::move(token) + '/') {}

  // "/TOKEN/", the prefix of the path of every admitted request.
  const std::string& prefix() const { return prefix_; }

  // 0 if the request is admitted, else the status to refuse it with: 400, 403, 405, 411 or 413. Requests for a host
  // name other than the loopback's are refused as a defence against DNS rebinding, and so are requests that another
  // page has made.
  int refusal(const httplib::Request& request) const;

 private:
  std::string prefix_;
};

// 256 random bits in hexadecimal. Throws std::system_error if the system's random generator fails.
std::string randomToken();

}  // namespace vantorel::view
