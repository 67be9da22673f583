// The colour space options, for every command that reads pictures.
#pragma once

#include <string>
#include <vector>

#include "cli/commands/OptionTables.h"
#include "cli/commands/OptionValues.h"

namespace vantorel::cli {

// Stores the value in the options' ColourOptions, which are named `colour`.
template <typename Options, std::string ColourOptions::*Field>
void setColour(Options& options, const std::string& name, const std::string& value) {
  if (value.empty()) {
    throw badArgument(name, "is empty; give a name, or omit the option");
  }
  options.colour.*Field = value;
  if (options.colour.first_option.empty()) {
    options.colour.first_option = name;
  }
}

template <typename Options>
OptionRow<Options> ocioRow(const char* group) {
  return {"--ocio", "CONFIG", group, "An OpenColorIO config, whose spaces can be named (default: $OCIO, if it is set)",
          setColour<Options, &ColourOptions::config>};
}

// Adds the rows to a command's table, under that heading; those for a plate only if the command has one.
template <typename Options>
std::vector<OptionRow<Options>> withColourOptions(std::vector<OptionRow<Options>> rows, const char* group,
                                                  bool has_plate) {
  rows.push_back({"--colorspace-layer", "NAME", group,
                  "The colour space of the layer (default: that stated in its file, or the usual one for its format)",
                  setColour<Options, &ColourOptions::layer>});
  if (has_plate) {
    rows.push_back(
        {"--colorspace-over", "NAME", group, "The same for the plate", setColour<Options, &ColourOptions::plate>});
  }
  rows.push_back({"--colorspace-out", "NAME", group,
                  "The colour space to write (default: the plate's, else the layer's; for OpenEXR, its linear form)",
                  setColour<Options, &ColourOptions::output>});
  rows.push_back(ocioRow<Options>(group));
  rows.push_back({"--raw", "", group, "Convert nothing: use all values as they are",
                  [](Options& o, const std::string&, const std::string&) { o.colour.raw = true; }});
  return rows;
}

}  // namespace vantorel::cli
