#include <utility>

#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"

namespace vantorel::host {

namespace {

std::int32_t registerStringTable(void** table_ref, std::int32_t format) {
  CallContext* const context = currentCall();
  if (context == nullptr || table_ref == nullptr || format != PF_STRING_TABLE_FORMAT) {
    return kCodeBadArgument;
  }
  return guarded([&]() -> std::int32_t {
    Result<StringTable> table = StringTable::read(*table_ref, context->resources.translations);
    *table_ref = nullptr;
    if (!table) {
      context->failure = std::move(table).error();
      return kCodeBadArgument;
    }
    *table_ref = context->resources.string_tables.add(std::move(*table));
    return ERR_NONE;
  });
}

const char* lookupString(void* table_ref, std::int32_t row, std::int32_t /*zero*/, void* /*null_pointer*/) {
  CallContext* const context = currentCall();
  const StringTable* const table = context != nullptr ? context->resources.string_tables.find(table_ref) : nullptr;
  if (table == nullptr) {
    return "";
  }
  const std::string& text = table->text(row);
  if (context->declared == nullptr) {
    return text.c_str();
  }
  // In parameter setup the text will be copied into a parameter's name, so it is truncated to fit.
  const std::string_view name = cutToBytes(text, PF_PARAM_NAME_CAPACITY - 1);
  name.copy(context->parameter_name, name.size());
  context->parameter_name[name.size()] = '\0';
  return context->parameter_name;
}

std::int32_t unregisterStringTable(void** table_ref) {
  CallContext* const context = currentCall();
  if (context == nullptr || table_ref == nullptr || !context->resources.string_tables.remove(*table_ref)) {
    return kCodeBadArgument;
  }
  *table_ref = nullptr;
  return ERR_NONE;
}

}  // namespace

void installStringCallbacks(PF_InData* in_data) {
  in_data->register_string_table = registerStringTable;
  in_data->lookup_string = lookupString;
  in_data->unregister_string_table = unregisterStringTable;
}

}  // namespace vantorel::host
