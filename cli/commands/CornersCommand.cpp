#include <fmt/format.h>

#include <cstdio>

#include "cli/base/CommandError.h"
#include "cli/commands/Commands.h"
#include "cli/commands/CornersOutput.h"
#include "cli/corners/CornersTrack.h"
#include "tracks/Summary.h"

namespace vantorel::cli {

namespace {

void requireSizes(const CornersOptions& options, const CornersTrack& track, host::Size size) {
  const auto conventions = tracks::overridden(track.read->track.conventions, options.track.resolve.given);
  if (const char* picture = tracks::missingSize(conventions, {size, size}); *picture != '\0') {
    throw fileFailure(options.track.files,
                      fmt::format("has positions that need the {}'s size; give it with --size WxH", picture));
  }
}

void showSummary(std::FILE* stream, const tracks::Format& format, const tracks::ResolvedTrack& resolved) {
  fmt::print(stream, "{:<12}{}: {}\n{:<12}{}\n{}", "format", format.name, format.description, "order",
             tracks::orderText(resolved.order), tracks::summaryText(tracks::summarize(resolved.track)));
  std::fflush(stream);
}

}  // namespace

ExitCode runCorners(const CornersOptions& options) {
  const std::vector<CornersOutput> outputs = planCornersOutputs(options);
  const CornersTrack track = readCorners(options.track, options.rate);
  const host::Size size = options.size.value_or(options.track.resolve.given.size.value_or(host::Size{}));
  requireSizes(options, track, size);
  const tracks::ResolvedTrack resolved = resolveCorners(track, size, size);
  tellNotes(resolved.notes);
  showSummary(takesStandardOutput(outputs) ? stderr : stdout, *track.read->format, resolved);
  writeCornersOutputs(outputs, resolved.track, size);
  return ExitCode::Done;
}

}  // namespace vantorel::cli
