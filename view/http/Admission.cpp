#include "view/http/Admission.h"

#include <sys/random.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>
#include <system_error>

namespace vantorel::view {

namespace {

constexpr int kBadRequest = 400;
constexpr int kForbidden = 403;
constexpr int kMethodNotAllowed = 405;
constexpr int kLengthRequired = 411;
constexpr int kTooLarge = 413;

// Takes the same time wherever the two differ, so that timing reveals nothing about the token.
bool beginsWith(std::string_view text, std::string_view secret) {
  if (text.size() < secret.size()) {
    return false;
  }
  unsigned different = 0;
  for (std::size_t i = 0; i < secret.size(); ++i) {
    different |= static_cast<unsigned>(text[i] ^ secret[i]);
  }
  return different == 0;
}

// "127.0.0.1" or "localhost", with or without a port. The port is not compared, since it may differ behind a tunnel.
bool isLoopback(std::string_view authority) {
  const std::size_t colon = authority.find(':');
  const std::string_view name = authority.substr(0, colon);
  const std::string_view port = colon == std::string_view::npos ? "0" : authority.substr(colon + 1);
  const bool digits = !port.empty() && port.find_first_not_of("0123456789") == std::string_view::npos;
  return digits && (name == "127.0.0.1" || name == "localhost");
}

bool isFromOwnPage(const httplib::Request& request) {
  const std::string host = request.get_header_value("Host");
  if (request.get_header_value_count("Host") != 1 || !isLoopback(host)) {
    return false;
  }
  if (request.has_header("Origin") && request.get_header_value("Origin") != "http://" + host) {
    return false;
  }
  const std::string site = request.get_header_value("Sec-Fetch-Site");
  return site.empty() || site == "same-origin" || site == "none";
}

int bodyRefusal(const httplib::Request& request) {
  if (request.has_header("Transfer-Encoding")) {
    return kLengthRequired;
  }
  const std::string text = request.get_header_value("Content-Length");
  if (text.empty()) {
    return request.method == "POST" ? kLengthRequired : 0;
  }
  std::size_t length = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), length);
  if (fault == std::errc::result_out_of_range) {
    return kTooLarge;
  }
  if (fault != std::errc() || end != text.data() + text.size() ||
      request.get_header_value_count("Content-Length") != 1 || (request.method == "GET" && length != 0)) {
    return kBadRequest;
  }
  return length > kMaxBodyBytes ? kTooLarge : 0;
}

}  // namespace

int Admission::refusal(const httplib::Request& request) const {
  if (!isFromOwnPage(request) || !beginsWith(request.path, prefix_)) {
    return kForbidden;
  }
  if (request.method != "GET" && request.method != "POST") {
    return kMethodNotAllowed;
  }
  return bodyRefusal(request);
}

std::string randomToken() {
  std::array<unsigned char, 32> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "random numbers");
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string token;
  for (const unsigned char byte : bytes) {
    token += kDigits[byte >> 4];
    token += kDigits[byte & 15];
  }
  return token;
}

}  // namespace vantorel::view
