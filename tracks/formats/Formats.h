// The formats; each is defined in its own file.
#pragma once

#include "tracks/Format.h"

namespace vantorel::tracks {

extern const Format kNodeTextFormat;
extern const Format kShakeFormat;
extern const Format k3dePointsFormat;
extern const Format kPfTrackFormat;
extern const Format kSynthEyesFormat;
extern const Format kBoujouFormat;
extern const Format kMatchMoverFormat;
extern const Format kMayaLiveFormat;
extern const Format kFlameFormat;
extern const Format kUvTextFormat;
extern const Format kUvJsonFormat;
extern const Format kBlenderFormat;
extern const Format kMltFormat;
extern const Format kBenchmarkFormat;
extern const Format kColumnsFormat;
extern const Format kCsvFormat;
extern const Format kJsonFormat;

}  // namespace vantorel::tracks
