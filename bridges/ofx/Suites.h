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
// The same for a handle that is null although the host refused nothing.
void checkNotNull(const void* handle, const char* call);

// The first three are there once fetched; the others are null in hosts that lack them. A suite in which one of the
// functions that the plug-in calls is null counts as absent.
struct Suites {
  const PropertySuite* property = nullptr;
  const ImageEffectSuite* effect = nullptr;
  const ParameterSuite* parameter = nullptr;
  const MessageSuite* message = nullptr;  // only its first function where `has_persistent_messages` is false
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

// From load to unload. The suites can be called even after that, since the host may have left a render running.
bool isLoaded();

// Fetches the suites. A Fault with MissingHostFeature where one of the first three is absent.
void fetchSuites();
void dropSuites();

}  // namespace vantorel::ofx
