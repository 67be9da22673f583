// Who may ask what: the checks on a request's head, before anything else of it is read.
#pragma once

#include <httplib.h>

#include <string>

namespace vantorel::view {

constexpr std::size_t kMaxBodyBytes = 8u << 20;

// Admits requests for paths below /TOKEN/ that come from this machine's own page. Safe to use from several threads.
class Admission {
 public:
  explicit Admission(std::string token) : prefix_('/' + std::move(token) + '/') {}

  // "/TOKEN/", which the path of every admitted request begins with.
  const std::string& prefix() const { return prefix_; }

  // 0 where the request is admitted, else the status to refuse it with: 400, 403, 405, 411 or 413. A host name other
  // than that of the loopback is refused, since a name that a stranger's page has given to this address would come
  // with it, and so is a request that another page has made.
  int refusal(const httplib::Request& request) const;

 private:
  std::string prefix_;
};

// 256 random bits in hexadecimal. Throws std::system_error where the system has none to give.
std::string randomToken();

}  // namespace vantorel::view
