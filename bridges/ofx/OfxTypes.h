// The part of the OFX image-effect interface that this plug-in uses: handles, records, suites and status codes, with
// the order and types that hosts expect. The names are this project's own; the strings are the interface's.
#pragma once

#include <cstddef>

namespace vantorel::ofx {

enum class Status : int {
  Ok = 0,
  Failed = 1,
  Fatal = 2,
  Unknown = 3,
  MissingHostFeature = 4,
  Unsupported = 5,
  Exists = 6,
  Format = 7,
  Memory = 8,
  BadHandle = 9,
  BadIndex = 10,
  BadValue = 11,
  ReplyYes = 12,
  ReplyNo = 13,
  ReplyDefault = 14,
  ImageFormat = 1000,
};

using Time = double;

// Only the host knows what a handle points to.
using PropertySet = struct PropertySetRecord*;
using EffectHandle = struct EffectRecord*;
using ClipHandle = struct ClipRecord*;
using ImageMemory = struct ImageMemoryRecord*;
using ParamSet = struct ParamSetRecord*;
using ParamHandle = struct ParamRecord*;
using InteractHandle = struct InteractRecord*;
using DrawContext = struct DrawContextRecord*;
using MutexHandle = struct MutexRecord*;

struct RectI {
  int x1 = 0;
  int y1 = 0;
  int x2 = 0;
  int y2 = 0;
  int width() const { return x2 - x1; }
  int height() const { return y2 - y1; }
  bool empty() const { return x2 <= x1 || y2 <= y1; }
};

struct RectD {
  double x1 = 0.0;
  double y1 = 0.0;
  double x2 = 0.0;
  double y2 = 0.0;
};

struct PointD {
  double x = 0.0;
  double y = 0.0;
};

struct RangeD {
  double min = 0.0;
  double max = 0.0;
};

struct Colour {
  float red = 0.0F;
  float green = 0.0F;
  float blue = 0.0F;
  float alpha = 1.0F;
};

struct Host {
  PropertySet properties;
  const void* (*fetch_suite)(PropertySet host, const char* name, int version);
};

using MainEntry = Status(const char* action, const void* handle, PropertySet in, PropertySet out);

struct Plugin {
  const char* api;
  int api_version;
  const char* identifier;
  unsigned version_major;
  unsigned version_minor;
  void (*set_host)(Host*);
  MainEntry* main_entry;
};
static_assert(sizeof(void*) != 8 || (offsetof(Plugin, identifier) == 16 && offsetof(Plugin, version_minor) == 28 &&
                                     offsetof(Plugin, main_entry) == 40 && sizeof(Plugin) == 48));

struct PropertySuite {
  Status (*set_pointer)(PropertySet, const char* name, int index, void* value);
  Status (*set_string)(PropertySet, const char* name, int index, const char* value);
  Status (*set_double)(PropertySet, const char* name, int index, double value);
  Status (*set_int)(PropertySet, const char* name, int index, int value);
  Status (*set_pointers)(PropertySet, const char* name, int count, void* const* values);
  Status (*set_strings)(PropertySet, const char* name, int count, const char* const* values);
  Status (*set_doubles)(PropertySet, const char* name, int count, const double* values);
  Status (*set_ints)(PropertySet, const char* name, int count, const int* values);
  Status (*get_pointer)(PropertySet, const char* name, int index, void** value);
  Status (*get_string)(PropertySet, const char* name, int index, char** value);
  Status (*get_double)(PropertySet, const char* name, int index, double* value);
  Status (*get_int)(PropertySet, const char* name, int index, int* value);
  Status (*get_pointers)(PropertySet, const char* name, int count, void** values);
  Status (*get_strings)(PropertySet, const char* name, int count, char** values);
  Status (*get_doubles)(PropertySet, const char* name, int count, double* values);
  Status (*get_ints)(PropertySet, const char* name, int count, int* values);
  Status (*reset)(PropertySet, const char* name);
  Status (*dimension)(PropertySet, const char* name, int* count);
};

struct ImageEffectSuite {
  Status (*properties)(EffectHandle, PropertySet*);
  Status (*param_set)(EffectHandle, ParamSet*);
  Status (*define_clip)(EffectHandle, const char* name, PropertySet*);
  Status (*clip)(EffectHandle, const char* name, ClipHandle*, PropertySet*);
  Status (*clip_properties)(ClipHandle, PropertySet*);
  Status (*clip_image)(ClipHandle, Time, const RectD* region, PropertySet* image);
  Status (*release_image)(PropertySet image);
  Status (*clip_region_of_definition)(ClipHandle, Time, RectD*);
  int (*abort)(EffectHandle);
  Status (*allocate)(EffectHandle, std::size_t bytes, ImageMemory*);
  Status (*free)(ImageMemory);
  Status (*lock)(ImageMemory, void**);
  Status (*unlock)(ImageMemory);
};

struct ParameterSuite {
  Status (*define)(ParamSet, const char* type, const char* name, PropertySet*);
  Status (*handle)(ParamSet, const char* name, ParamHandle*, PropertySet*);
  Status (*set_properties)(ParamSet, PropertySet*);
  Status (*properties)(ParamHandle, PropertySet*);
  Status (*value)(ParamHandle, ...);
  Status (*value_at_time)(ParamHandle, Time, ...);
  Status (*derivative)(ParamHandle, Time, ...);
  Status (*integral)(ParamHandle, Time, Time, ...);
  Status (*set_value)(ParamHandle, ...);
  Status (*set_value_at_time)(ParamHandle, Time, ...);
  Status (*key_count)(ParamHandle, unsigned*);
  Status (*key_time)(ParamHandle, unsigned, Time*);
  Status (*key_index)(ParamHandle, Time, int direction, int* index);
  Status (*delete_key)(ParamHandle, Time);
  Status (*delete_all_keys)(ParamHandle);
  Status (*copy)(ParamHandle to, ParamHandle from, Time offset, const RangeD*);
  Status (*begin_edit)(ParamSet, const char* label);
  Status (*end_edit)(ParamSet);
};

// Version 2; version 1 has only the first function.
struct MessageSuite {
  Status (*message)(void* effect, const char* type, const char* id, const char* format, ...);
  Status (*set_persistent)(void* effect, const char* type, const char* id, const char* format, ...);
  Status (*clear_persistent)(void* effect);
};

struct MultiThreadSuite {
  Status (*run)(void (*function)(unsigned index, unsigned count, void* data), unsigned threads, void* data);
  Status (*cpu_count)(unsigned*);
  Status (*thread_index)(unsigned*);
  int (*is_spawned_thread)();
  Status (*create_mutex)(MutexHandle*, int locked);
  Status (*destroy_mutex)(MutexHandle);
  Status (*lock_mutex)(MutexHandle);
  Status (*unlock_mutex)(MutexHandle);
  Status (*try_lock_mutex)(MutexHandle);
};

struct InteractSuite {
  Status (*swap_buffers)(InteractHandle);
  Status (*redraw)(InteractHandle);
  Status (*properties)(InteractHandle, PropertySet*);
};

struct DrawSuite {
  Status (*standard_colour)(DrawContext, int which, Colour*);
  Status (*set_colour)(DrawContext, const Colour*);
  Status (*set_line_width)(DrawContext, float);
  Status (*set_line_stipple)(DrawContext, int stipple);
  Status (*draw)(DrawContext, int primitive, const PointD*, int count);
  Status (*draw_text)(DrawContext, const char*, const PointD*, int alignment);
};

}  // namespace vantorel::ofx
