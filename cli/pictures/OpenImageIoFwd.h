// OpenImageIO's classes by name, so that headers need not include its own, which take long to compile.
#pragma once

#include <OpenImageIO/oiioversion.h>

OIIO_NAMESPACE_BEGIN
class ImageSpec;
OIIO_NAMESPACE_END
