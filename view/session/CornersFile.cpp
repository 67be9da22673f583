#include "view/session/CornersFile.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/pictures/OutputFile.h"
#include "view/session/TrackEdit.h"

namespace vantorel::view {

namespace {

namespace fs = std::filesystem;

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) {
    throw cli::fileFailure(path, "cannot be read; check its permissions and its disk");
  }
  return text.str();
}

bool exists(const std::string& path) {
  std::error_code fault;
  return fs::exists(path, fault);
}

const char* formatByName(const std::string& path) {
  const std::string extension = cli::lowerCaseExtension(path);
  return extension == ".json" ? "json" : (extension == ".csv" ? "csv" : nullptr);
}

// Options that change what the file's numbers mean would have to be undone in what is written.
bool changesMeaning(const tracks::ResolveOptions& options) {
  return options.given != tracks::Conventions{} || options.first_frame || options.sigma > 0.0;
}

}  // namespace

std::string reasonNotToSave(const cli::TrackOptions& options) {
  if (options.files.empty()) {
    return "no file of corners was named; start with --corners FILE.csv or FILE.json, which need not exist";
  }
  if (options.files == "-" || cli::trackFiles(options.files).size() != 1) {
    return "the corners come from standard input or from several files; name one with --corners FILE.csv";
  }
  if (changesMeaning(options.resolve)) {
    return "options say what the file's numbers mean; convert it with 'vantorel corners FILE -o OTHER.csv' first";
  }
  if (!exists(options.files)) {
    return formatByName(options.files) != nullptr ? "" : "the file's name ends neither in .csv nor in .json";
  }
  const std::string text = contentOf(options.files);
  return isEditable(text, options.files)
             ? ""
             : "the file is in a tracker's format; convert it with 'vantorel corners FILE -o OTHER.csv' first";
}

void saveCorners(const cli::TrackOptions& options, const tracks::CornerTrack& track, host::Size layer) {
  if (const std::string reason = reasonNotToSave(options); !reason.empty()) {
    throw cli::badArgument("--corners", reason);
  }
  const std::string& path = options.files;
  std::string text;
  if (exists(path)) {
    text = editedTrack(contentOf(path), path, track, layer);
  } else {
    const auto written = tracks::writeTrack(track, *tracks::formatNamed(formatByName(path)), {});
    if (!written) {
      throw cli::badArgument("--corners", written.error().message);
    }
    text = *written;
  }
  cli::OutputFile file(path);
  file.note(std::fwrite(text.data(), 1, text.size(), file.stream()) == text.size());
  file.commit();
}

}  // namespace vantorel::view
