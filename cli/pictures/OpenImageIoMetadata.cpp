#include "cli/pictures/OpenImageIoMetadata.h"

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

}  // namespace vantorel::cli
