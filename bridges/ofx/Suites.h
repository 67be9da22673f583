// What the host offers, and how this plug-in tells itself that something went wrong.
#pragma once

#include <string>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// Thrown inside the plug-in, and turned into its status at the entry.
struct Fault {
  Status status = Status::Failed;
  std::string message;  // for a person; empty where there is nothing to say
};

// Throws a Fault for a status that is not Ok. `call` names what the host refused.
void check(Status status, const char* call);

// The first three are there from load to unload; the others are null in hosts that lack them.
struct Suites {
  const PropertySuite* property = nullptr;
  const ImageEffectSuite* effect = nullptr;
  const ParameterSuite* parameter = nullptr;
  const MessageSuite* message = nullptr;  // of its first version where `has_persistent_messages` is false
  bool has_persistent_messages = false;
  const MultiThreadSuite* threads = nullptr;
  const InteractSuite* interact = nullptr;
  const DrawSuite* draw = nullptr;
};

const Suites& suites();

// The host's own properties; null without a host.
PropertySet hostProperties();

// Remembers the host, calling nothing.
void setHost(Host* host);

// Fetches the suites. A Fault with MissingHostFeature where one of the first three is absent.
void fetchSuites();
void dropSuites();

}  // namespace vantorel::ofx
