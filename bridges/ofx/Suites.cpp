#include "bridges/ofx/Suites.h"

namespace vantorel::ofx {
namespace {

Host* the_host = nullptr;
Suites the_suites;

template <typename Suite>
const Suite* fetch(const char* name, int version) {
  return static_cast<const Suite*>(the_host->fetch_suite(the_host->properties, name, version));
}

}  // namespace

void check(Status status, const char* call) {
  if (status != Status::Ok) {
    throw Fault{status,
                std::string("the host refused ") + call + " with status " + std::to_string(static_cast<int>(status))};
  }
}

const Suites& suites() {
  return the_suites;
}

PropertySet hostProperties() {
  return the_host != nullptr ? the_host->properties : nullptr;
}

void setHost(Host* host) {
  the_host = host;
}

void fetchSuites() {
  if (the_host == nullptr || the_host->fetch_suite == nullptr) {
    throw Fault{Status::MissingHostFeature, {}};
  }
  Suites found;
  found.property = fetch<PropertySuite>("OfxPropertySuite", 1);
  found.effect = fetch<ImageEffectSuite>("OfxImageEffectSuite", 1);
  found.parameter = fetch<ParameterSuite>("OfxParameterSuite", 1);
  if (found.property == nullptr || found.effect == nullptr || found.parameter == nullptr) {
    throw Fault{Status::MissingHostFeature, {}};
  }
  found.message = fetch<MessageSuite>("OfxMessageSuite", 2);
  found.has_persistent_messages = found.message != nullptr;
  if (found.message == nullptr) {
    found.message = fetch<MessageSuite>("OfxMessageSuite", 1);
  }
  found.threads = fetch<MultiThreadSuite>("OfxMultiThreadSuite", 1);
  found.interact = fetch<InteractSuite>("OfxInteractSuite", 1);
  found.draw = fetch<DrawSuite>("OfxDrawSuite", 1);
  the_suites = found;
}

void dropSuites() {
  the_suites = {};
}

}  // namespace vantorel::ofx
