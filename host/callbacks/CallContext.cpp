#include "host/callbacks/CallContext.h"

namespace vantorel::host {

namespace {

thread_local CallContext* current_call = nullptr;

}  // namespace

CallContext* currentCall() {
  return current_call;
}

CallScope::CallScope(CallContext& context) : outer_(current_call) {
  current_call = &context;
}

CallScope::~CallScope() {
  current_call = outer_;
}

}  // namespace vantorel::host
