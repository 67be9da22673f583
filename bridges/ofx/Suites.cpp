#include "bridges/ofx/Suites.h"

#include <atomic>

namespace vantorel::ofx {
namespace {

Host* the_host = nullptr;
Suites the_suites;
std::atomic<bool> is_loaded = false;

// Also null if one of these functions is.
template <typename Suite, typename... Functions>
const Suite* fetch(const char* name, int version, Functions Suite::*... functions) {
  const auto* const suite = static_cast<const Suite*>(the_host->fetch_suite(the_host->properties, name, version));
  return suite != nullptr && ((suite->*functions != nullptr) && ...) ? suite : nullptr;
}

void fetchRequired(Suites* found) {
  using P = PropertySuite;
  found->property =
      fetch("OfxPropertySuite", 1, &P::set_pointer, &P::set_string, &P::set_double, &P::set_int, &P::set_doubles,
            &P::get_pointer, &P::get_string, &P::get_double, &P::get_int, &P::get_doubles, &P::get_ints);
  using E = ImageEffectSuite;
  found->effect = fetch("OfxImageEffectSuite", 1, &E::properties, &E::param_set, &E::define_clip, &E::clip,
                        &E::clip_image, &E::release_image, &E::clip_region_of_definition, &E::abort);
  using V = ParameterSuite;
  found->parameter = fetch("OfxParameterSuite", 1, &V::define, &V::handle, &V::value_at_time, &V::set_value,
                           &V::begin_edit, &V::end_edit);
  if (found->property == nullptr || found->effect == nullptr || found->parameter == nullptr) {
    throw Fault{Status::MissingHostFeature, {}};
  }
}

void fetchOptional(Suites* found) {
  using M = MessageSuite;
  found->message = fetch("OfxMessageSuite", 2, &M::message, &M::set_persistent, &M::clear_persistent);
  found->has_persistent_messages = found->message != nullptr;
  if (found->message == nullptr) {
    found->message = fetch("OfxMessageSuite", 1, &M::message);
  }
  found->threads = fetch("OfxMultiThreadSuite", 1, &MultiThreadSuite::cpu_count, &MultiThreadSuite::is_spawned_thread);
  found->interact = fetch("OfxInteractSuite", 1, &InteractSuite::redraw, &InteractSuite::properties);
  using D = DrawSuite;
  found->draw = fetch("OfxDrawSuite", 1, &D::set_colour, &D::set_line_width, &D::draw, &D::draw_text);
}

}  // namespace

void check(Status status, const char* call) {
  if (status != Status::Ok) {
    throw Fault{status,
                std::string("the host refused ") + call + " with status " + std::to_string(static_cast<int>(status))};
  }
}

void checkNotNull(const void* handle, const char* call) {
  check(handle != nullptr ? Status::Ok : Status::BadHandle, call);
}

const Suites& suites() {
  return the_suites;
}

bool isLoaded() {
  return is_loaded;
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
  fetchRequired(&found);
  fetchOptional(&found);
  the_suites = found;
  is_loaded = true;
}

void dropSuites() {
  is_loaded = false;
}

}  // namespace vantorel::ofx
