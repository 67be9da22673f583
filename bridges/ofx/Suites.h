// The suites that the host offers, and the error that is thrown if it refuses a call.
#pragma once

#include <string>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// Thrown inside the plug-in; the entry returns its status.
struct Fault {
  Status status = Status::Failed;
  std::string message;  // for the user; may be empty
};

// Throws a Fault for a status that is not Ok. `call` names what the host refused.
void check(Status status, const char* call);
// Throws a BadHandle Fault for a null handle that came with the status Ok.
void checkNotNull(const void* handle, const char* call);

// After fetchSuites the first three are set; the others are null if the host lacks them. A suite in which a function
// that the plug-in calls is null counts as absent.
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

// The host's properties; null if there is no host.
PropertySet hostProperties();

// Stores the host without calling it.
void setHost(Host* host);

// True from load to unload. The suites stay usable after that, because the host may have left a render running.
bool isLoaded();

// A MissingHostFeature Fault if one of the first three suites is absent.
void fetchSuites();
void dropSuites();

}  // namespace vantorel::ofx
