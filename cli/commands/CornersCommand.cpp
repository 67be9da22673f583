#include <fmt/format.h>

#include <cstdio>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/commands/Commands.h"
#include "cli/corners/CornersTrack.h"
#include "cli/pictures/OutputFile.h"
#include "tracks/Plot.h"
#include "tracks/Summary.h"

namespace vantorel::cli {

namespace {

constexpr const char* kTextExtension = ".txt";

void writeText(const std::string& path, const std::string& text) {
  OutputFile file(path);
  file.note(std::fwrite(text.data(), 1, text.size(), file.stream()) == text.size());
  file.commit();
}

std::string formatNames() {
  std::string names;
  for (const tracks::Format* format : tracks::formats()) {
    names.append(names.empty() ? "" : ", ").append(format->name);
  }
  return names;
}

// By its name, else by the ending of the output's name where only one format has it or it is the usual one.
const tracks::Format& outputFormat(const CornersOptions& options, const std::string& output) {
  if (!options.format.empty()) {
    if (const tracks::Format* format = tracks::formatNamed(options.format)) {
      return *format;
    }
    throw badArgument("--format", fmt::format("'{}' is not known; give one of {}", options.format, formatNames()));
  }
  const std::string extension = lowerCaseExtension(output);
  if (extension == ".csv") {
    return *tracks::formatNamed("csv");
  }
  for (const tracks::Format* format : tracks::formats()) {
    if (format->extension == extension && extension != kTextExtension) {
      return *format;
    }
  }
  throw badArgument("--output", fmt::format("'{}' does not tell the format; name it with --format, one of {}", output,
                                            formatNames()));
}

void requireSizes(const CornersOptions& options, const CornersTrack& track, host::Size size) {
  const auto conventions = tracks::overridden(track.read->track.conventions, options.track.resolve.given);
  if (const char* picture = tracks::missingSize(conventions, {size, size}); *picture != '\0') {
    throw fileFailure(options.track.files,
                      fmt::format("has positions that need the {}'s size; give it with --size WxH", picture));
  }
}

void convert(const CornersOptions& options, const tracks::CornerTrack& track, host::Size size) {
  const std::vector<std::string> outputs = trackFiles(options.output);
  if (outputs.size() != 1 && outputs.size() != kCornerCount) {
    throw badArgument("--output", "names neither one file nor four; give one, or one for each of ul,ur,ll,lr");
  }
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    tracks::WriteOptions write_options;
    write_options.frame = size;
    if (outputs.size() == kCornerCount) {
      write_options.corners = {static_cast<Corner>(i)};
    }
    const auto text = tracks::writeTrack(track, outputFormat(options, outputs[i]), write_options);
    if (!text) {
      throw badArgument("--output", fmt::format("{}: {}", text.error().input, text.error().message));
    }
    writeText(outputs[i], *text);
  }
}

}  // namespace

ExitCode runCorners(const CornersOptions& options) {
  const CornersTrack track = readCorners(options.track, options.rate);
  const host::Size size = options.size.value_or(options.track.resolve.given.size.value_or(host::Size{}));
  requireSizes(options, track, size);
  const tracks::ResolvedTrack resolved = resolveCorners(track, size, size);
  tellNotes(resolved.notes);
  std::printf("%-12s%s: %s\n", "format", std::string(track.read->format->name).c_str(),
              std::string(track.read->format->description).c_str());
  std::printf("%-12s%s\n", "order", tracks::orderText(resolved.order).c_str());
  std::fputs(tracks::summaryText(tracks::summarize(resolved.track)).c_str(), stdout);
  if (!options.output.empty()) {
    convert(options, resolved.track, size);
  }
  if (!options.plot.empty()) {
    writeText(options.plot, tracks::plotSvg(resolved.track, size));
  }
  return ExitCode::Done;
}

}  // namespace vantorel::cli
