// What a file states besides its pixels.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::cli {

// One value of a file. Names and types are those that OpenImageIO has for all formats: "Copyright" is a "string",
// "XResolution" a "float", "ICCProfile" a "uint8[560]", "smpte:TimeCode" a "timecode".
struct Attribute {
  std::string name;
  std::string type;
  std::string text;              // a string's
  std::vector<std::byte> bytes;  // all else's, numbers in the machine's own order

  bool isText() const { return type == "string"; }
  bool operator==(const Attribute&) const = default;
};

Attribute textAttribute(std::string name, std::string text);
Attribute numberAttribute(std::string name, int value);
Attribute numberAttribute(std::string name, float value);

// The attributes of a file, in its order, each name once. Names are compared without regard to case.
class Metadata {
 public:
  // Null where there is none of that name.
  const Attribute* find(std::string_view name) const;
  // Empty where there is none of that name or it is no text.
  std::string text(std::string_view name) const;
  // Of a number of any type, the first of several; nothing where there is none.
  std::optional<double> number(std::string_view name) const;
  // All numbers of an attribute of floats, as chromaticities are; empty where there is none.
  std::vector<float> floats(std::string_view name) const;

  // Adds the attribute, or puts it in the place of that of its name.
  void set(Attribute attribute);
  void remove(std::string_view name);

  const std::vector<Attribute>& attributes() const { return attributes_; }

 private:
  std::vector<Attribute> attributes_;
};

}  // namespace vantorel::cli
