#include "view/session/CornersFile.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/pictures/OutputFile.h"
#include "tracks/TrackFile.h"
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

std::optional<std::string> contentIfAny(const std::string& path) {
  return exists(path) ? std::optional(contentOf(path)) : std::nullopt;
}

bool isOneFile(const cli::TrackOptions& options) {
  return !options.files.empty() && options.files != "-" && cli::trackFiles(options.files).size() == 1;
}

const char* formatByName(const std::string& path) {
  const std::string extension = cli::lowerCaseExtension(path);
  return extension == ".json" ? "json" : (extension == ".csv" ? "csv" : nullptr);
}

// Whether options change the meaning of the file's numbers; saving would have to reverse them.
bool changesMeaning(const tracks::ResolveOptions& options) {
  return options.given != tracks::Conventions{} || options.first_frame || options.sigma > 0.0;
}

}  // namespace

CornersFile::CornersFile(const cli::TrackOptions& options) : options_(options) {
  if (isOneFile(options_)) {
    known_ = contentIfAny(options_.files);
  }
}

std::string CornersFile::reasonNotToSave() const {
  if (options_.files.empty()) {
    return "no corners file was named; start with --corners FILE.csv or FILE.json, which need not exist";
  }
  if (!isOneFile(options_)) {
    return "the corners come from standard input or from several files; name one with --corners FILE.csv";
  }
  if (changesMeaning(options_.resolve)) {
    return "options say what the file's numbers mean; convert it with 'vantorel corners FILE -o OTHER.csv' first";
  }
  const std::optional<std::string> text = contentIfAny(options_.files);
  if (!text) {
    return formatByName(options_.files) != nullptr ? "" : "the file's name ends neither in .csv nor in .json";
  }
  return isEditable(*text, options_.files)
             ? ""
             : "the file is in a tracker's format; convert it with 'vantorel corners FILE -o OTHER.csv' first";
}

bool CornersFile::holdsInterpolation() const {
  if (!reasonNotToSave().empty()) {
    return false;
  }
  const std::optional<std::string> text = contentIfAny(options_.files);
  return text ? isJsonTrack(*text, options_.files) : std::string_view(formatByName(options_.files)) == "json";
}

bool CornersFile::isChanged() const {
  return isOneFile(options_) && contentIfAny(options_.files) != known_;
}

void CornersFile::save(const tracks::CornerTrack& track, host::Size layer) {
  if (const std::string reason = reasonNotToSave(); !reason.empty()) {
    throw cli::badArgument("--corners", reason);
  }
  const std::string& path = options_.files;
  std::string text;
  if (const std::optional<std::string> before = contentIfAny(path)) {
    text = editedTrack(*before, path, track, layer);
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
  known_ = std::move(text);
}

cli::CornersTrack CornersFile::read(const cli::FrameRate& rate) {
  std::optional<std::string> text = contentIfAny(options_.files);
  cli::CornersTrack corners = cli::readCorners(options_, rate);
  known_ = std::move(text);
  return corners;
}

}  // namespace vantorel::view
