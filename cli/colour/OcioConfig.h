// An OpenColorIO config: the named colour spaces of a pipeline.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/colour/ColourSpace.h"
#include "cli/colour/RowConversion.h"

namespace vantorel::cli {

// Safe to use from several threads.
class OcioConfig {
 public:
  // Reads the file; `given_by` is "--ocio" or "$OCIO". Throws CommandError (file failure) naming both.
  static std::shared_ptr<const OcioConfig> load(const std::string& path, const std::string& given_by);
  ~OcioConfig();
  OcioConfig(const OcioConfig&) = delete;
  OcioConfig& operator=(const OcioConfig&) = delete;

  // The name of the space with that name, alias or role.
  std::optional<std::string> find(const std::string& name) const;
  // The space that the config's file rules assign to a file's name; empty if only the default rule matches.
  std::optional<std::string> spaceOfFile(const std::string& path) const;
  // The space of the role scene_linear; `self` is this config.
  std::optional<ColourSpace> sceneLinear(const std::shared_ptr<const OcioConfig>& self) const;
  bool isLinear(const std::string& name) const;
  // The config's path and a hash of its content and of the tables that it names.
  std::string identity() const;
  const std::string& path() const { return path_; }

  // The conversion between two of its spaces. Throws CommandError naming the config.
  std::unique_ptr<const RowConversion> conversion(const std::string& from, const std::string& to) const;

  // A space of the config that is also known without it, through which conversions to all spaces outside the config go.
  // Throws CommandError if there is none.
  struct Hub {
    std::string name;
    RgbModel model;
  };
  Hub hub() const;

 private:
  struct Library;
  OcioConfig(std::string path, std::unique_ptr<const Library> library);

  std::string path_;
  std::unique_ptr<const Library> library_;
};

}  // namespace vantorel::cli
