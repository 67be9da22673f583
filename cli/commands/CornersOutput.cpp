#include "cli/commands/CornersOutput.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "cli/base/CommandError.h"
#include "cli/base/FileIdentity.h"
#include "cli/base/Text.h"
#include "cli/corners/CornersTrack.h"
#include "cli/pictures/OutputFile.h"
#include "tracks/Plot.h"

namespace vantorel::cli {

namespace {

constexpr const char* kStandardOutput = "-";
constexpr const char* kTextExtension = ".txt";

void writeText(const std::string& path, const std::string& text) {
  if (path == kStandardOutput) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
      throw fileFailure("standard output", fmt::format("cannot be written ({}); check what reads it",
                                                       std::generic_category().message(errno)));
    }
    return;
  }
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

// The format given by name, else by the output's extension if that is unique or has a usual format.
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
  throw badArgument("--output", fmt::format("the format cannot be told from '{}'; name it with --format, one of {}",
                                            output, formatNames()));
}

void refuseTwice(const std::vector<CornersOutput>& outputs) {
  for (auto output = outputs.begin(); output != outputs.end(); ++output) {
    const auto identity = identityOf(output->path);
    const bool twice = std::any_of(outputs.begin(), output, [&](const CornersOutput& earlier) {
      return earlier.path == output->path || (identity && identityOf(earlier.path) == identity);
    });
    if (twice) {
      throw badArgument("--output",
                        fmt::format("'{}' would be written twice; give each output its own name", output->path));
    }
  }
}

void refuseToReplaceTrack(const std::vector<CornersOutput>& outputs, const std::string& files) {
  for (const std::string& file : trackFiles(files)) {
    const auto identity = identityOf(file);
    for (const CornersOutput& output : outputs) {
      if (identity && output.path != kStandardOutput && identityOf(output.path) == identity) {
        throw badArgument(output.format != nullptr ? "--output" : "--plot",
                          fmt::format("'{}' is the track itself, '{}'; give another name, or --overwrite to replace it",
                                      output.path, file));
      }
    }
  }
}

std::string textOf(const CornersOutput& output, const tracks::CornerTrack& track, host::Size frame) {
  if (output.format == nullptr) {
    return tracks::plotSvg(track, frame);
  }
  tracks::WriteOptions options;
  options.frame = frame;
  if (!output.corners.empty()) {
    options.corners = output.corners;
  }
  auto text = tracks::writeTrack(track, *output.format, options);
  if (!text) {
    throw badArgument("--output", fmt::format("{}: {}", text.error().input, text.error().message));
  }
  return *std::move(text);
}

}  // namespace

std::vector<CornersOutput> planCornersOutputs(const CornersOptions& options) {
  std::vector<CornersOutput> outputs;
  if (!options.output.empty()) {
    const std::vector<std::string> paths = trackFiles(options.output);
    if (paths.size() != 1 && paths.size() != kCornerCount) {
      throw badArgument("--output", "names neither one file nor four; give one, or one for each of ul,ur,ll,lr");
    }
    for (std::size_t i = 0; i < paths.size(); ++i) {
      outputs.push_back({paths[i], &outputFormat(options, paths[i]), {}});
      if (paths.size() == kCornerCount) {
        outputs.back().corners = {static_cast<Corner>(i)};
      }
    }
  }
  if (!options.plot.empty()) {
    outputs.push_back({options.plot, nullptr, {}});
  }
  refuseTwice(outputs);
  if (!options.overwrite) {
    refuseToReplaceTrack(outputs, options.track.files);
  }
  return outputs;
}

bool takesStandardOutput(const std::vector<CornersOutput>& outputs) {
  return std::any_of(outputs.begin(), outputs.end(),
                     [](const CornersOutput& output) { return output.path == kStandardOutput; });
}

void writeCornersOutputs(const std::vector<CornersOutput>& outputs, const tracks::CornerTrack& track,
                         host::Size frame) {
  std::vector<std::string> texts;
  texts.reserve(outputs.size());
  for (const CornersOutput& output : outputs) {
    texts.push_back(textOf(output, track, frame));
  }
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    writeText(outputs[i].path, texts[i]);
  }
}

}  // namespace vantorel::cli
