#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"
#include "host/callbacks/Iteration.h"
#include "host/sampling/AreaSampler.h"

namespace vantorel::host {

namespace {

PF_Handle newHandle(std::uint64_t size) {
  CallContext* const context = currentCall();
  return context != nullptr ? context->resources.handles.allocate(size) : nullptr;
}

void disposeHandle(PF_Handle handle) {
  CallContext* const context = currentCall();
  if (context == nullptr) {
    return;
  }
  const bool known = context->resources.handles.release(handle);
  if (!known && context->ledger != nullptr) {
    guarded([&] {
      context->ledger->report("a handle that is not allocated was disposed of");
      return ERR_NONE;
    });
  }
}

// The capacity at `destination`: the rest of the call's message buffer if it points into that, else a whole message's.
std::size_t capacityAt(const char* destination) {
  const CallContext* const context = currentCall();
  if (context != nullptr && context->out != nullptr) {
    const char* const message = context->out->return_msg;
    if (destination >= message && destination < message + PF_RETURN_MSG_CAPACITY) {
      return static_cast<std::size_t>(message + PF_RETURN_MSG_CAPACITY - destination);
    }
  }
  return PF_RETURN_MSG_CAPACITY;
}

int formatText(char* destination, const char* format, ...) {
  const std::size_t capacity = capacityAt(destination);
  std::va_list arguments;
  va_start(arguments, format);
  // The analyzer overlooks va_start when it checks several files in one run.
  const int length =
      std::vsnprintf(destination, capacity, format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized)
  va_end(arguments);
  if (length >= 0 && static_cast<std::size_t>(length) >= capacity) {
    const std::size_t end = completeCharacters({destination, capacity - 1}).size();
    destination[end] = '\0';
    return static_cast<int>(end);
  }
  return length;
}

char* copyText(char* destination, const char* source) {
  const std::string_view text = cutToBytes(source, capacityAt(destination) - 1);
  std::memmove(destination, text.data(), text.size());
  destination[text.size()] = '\0';
  return destination;
}

PF_UtilityCallbacks makeUtilities(SampleSpace space) {
  PF_UtilityCallbacks table{};
  const AreaSamplers& samplers = areaSamplers(activeInstructionSet(), space);
  table.sample_area_8 = samplers.sample8;
  table.sample_area_16 = samplers.sample16;
  table.fill = fillWorld;
  table.new_handle = newHandle;
  table.dispose_handle = disposeHandle;
  table.ceil = [](double value) { return std::ceil(value); };
  table.sqrt = [](double value) { return std::sqrt(value); };
  table.sprintf = formatText;
  table.strcpy = copyText;
  installIterators(&table);
  return table;
}

}  // namespace

void installCallbacks(PF_InData* in_data, SampleSpace space) {
  static std::array<PF_UtilityCallbacks, kSampleSpaces> utilities{makeUtilities(SampleSpace::Centres),
                                                                  makeUtilities(SampleSpace::Outline),
                                                                  makeUtilities(SampleSpace::OutlineExtended)};
  in_data->utility_callbacks = &utilities[static_cast<std::size_t>(space)];
  in_data->suite_provider = suiteProvider();
  installParameterCallbacks(in_data);
  installStringCallbacks(in_data);
}

}  // namespace vantorel::host
