// The exported functions of a frei0r filter. No exception leaves them.
// The header declares them without C linkage and default visibility.
#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop

#include "bridges/frei0r/Filter.h"

using vantorel::frei0r::Filter;

namespace {

Filter* filterOf(f0r_instance_t instance) {
  return static_cast<Filter*>(instance);
}

}  // namespace

int f0r_init() {
  return 1;
}

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  *info = {"Vantorel",
           "Vantorel",
           F0R_PLUGIN_TYPE_FILTER,
           F0R_COLOR_MODEL_RGBA8888,
           FREI0R_MAJOR_VERSION,
           VANTOREL_MAJOR_VERSION,
           VANTOREL_MINOR_VERSION,
           vantorel::frei0r::kParameterCount,
           "Moves the corners of the picture to any four points, in true perspective"};
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
  if (index >= 0 && index < vantorel::frei0r::kParameterCount) {
    *info = vantorel::frei0r::parameterInfo(index);
  }
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
  return Filter::create(width, height).release();
}

void f0r_destruct(f0r_instance_t instance) {
  delete filterOf(instance);
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  vantorel::frei0r::setParameter(&filterOf(instance)->parameters, index, value);
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  vantorel::frei0r::getParameter(filterOf(instance)->parameters, index, value);
}

void f0r_update(f0r_instance_t instance, double, const uint32_t* in, uint32_t* out) {
  filterOf(instance)->draw(in, out);
}
