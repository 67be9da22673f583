#include "cli/pictures/OpenImageIoMetadata.h"

#include <OpenImageIO/tiffutils.h>

#include <vector>

#include "cli/pictures/FormatLibrary.h"

namespace vantorel::cli {

Metadata metadataOf(const OIIO::ImageSpec& spec) {
  Metadata metadata;
  for (const OIIO::ParamValue& value : spec.extra_attribs) {
    const std::string name = value.name().string();
    if (value.type() == OIIO::TypeDesc::STRING) {
      metadata.set(textAttribute(name, value.get_string()));
    } else if (value.type().basetype != OIIO::TypeDesc::STRING && value.type().basetype != OIIO::TypeDesc::PTR) {
      const auto* bytes = static_cast<const std::byte*>(value.data());
      metadata.set({name, value.type().c_str(), {}, {bytes, bytes + value.datasize()}});
    }
  }
  return metadata;
}

void addAttribute(OIIO::ImageSpec& spec, const Attribute& attribute) {
  if (attribute.isText()) {
    spec.attribute(attribute.name, attribute.text);
    return;
  }
  const OIIO::TypeDesc type(attribute.type);
  if (type.size() == attribute.bytes.size()) {
    spec.attribute(attribute.name, type, attribute.bytes.data());
  }
}

namespace {

void addTo(Metadata& metadata, const OIIO::ImageSpec& spec) {
  const Metadata found = metadataOf(spec);
  for (const Attribute& attribute : found.attributes()) {
    metadata.set(attribute);
  }
}

}  // namespace

void addExif(std::string_view block, Metadata& metadata) {
  OIIO::ImageSpec spec;
  if (OIIO::decode_exif(block, spec)) {
    addTo(metadata, spec);
  }
}

void addXmp(const std::string& packet, Metadata& metadata) {
  OIIO::ImageSpec spec;
  if (OIIO::decode_xmp(packet, spec)) {
    addTo(metadata, spec);
  }
}

std::string exifOf(const Metadata& metadata) {
  OIIO::ImageSpec spec;
  for (const Attribute& attribute : metadata.attributes()) {
    addAttribute(spec, attribute);
  }
  std::vector<char> block;
  OIIO::encode_exif(spec, block);
  return {block.begin(), block.end()};
}

}  // namespace vantorel::cli
