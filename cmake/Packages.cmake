# Debian packages, one per component: cmake --preset package, cmake --build --preset package, cpack --preset package. To
# add a package for another component, add a call of vantorel_package below.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantorel)
set(VANTOREL_MAINTAINER "Vantorel developers <developers@vantorel.example>" CACHE STRING
    "The maintainer field of the Debian packages")
set(CPACK_PACKAGE_CONTACT "${VANTOREL_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL "")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Independent of the umask of the user who builds them.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The files that every package contains in addition to its component: copyright and changelogs.
set(VANTOREL_PACKAGE_TEXTS ${CMAKE_CURRENT_LIST_DIR}/packages)
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # that of SOURCE_DATE_EPOCH if set
configure_file(${VANTOREL_PACKAGE_TEXTS}/changelog.in ${PROJECT_BINARY_DIR}/changelog.Debian @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/FinishPackages.cmake)
configure_file(${VANTOREL_PACKAGE_TEXTS}/FinishPackages.cmake.in ${CPACK_PRE_BUILD_SCRIPTS} @ONLY)

# vantorel_package(COMPONENT NAME SECTION SUMMARY LINE... [EVERY_MACHINE] [FIELD VALUE]...): makes the package NAME from
# COMPONENT; each LINE of the description has up to 79 characters. FIELD is DEPENDS (in addition to what dpkg-shlibdeps
# finds), ENHANCES or SUGGESTS. EVERY_MACHINE says that the files are the same on every architecture.
macro(vantorel_package component name section summary)
  set(fields DEPENDS ENHANCES SUGGESTS)
  cmake_parse_arguments(PACKAGE "EVERY_MACHINE" "${fields}" "" ${ARGN})
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  string(JOIN "\n" CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}" ${PACKAGE_UNPARSED_ARGUMENTS})
  foreach(field IN LISTS fields)
    if(PACKAGE_${field})
      set(CPACK_DEBIAN_${upper}_PACKAGE_${field} "${PACKAGE_${field}}")
    endif()
  endforeach()
  if(PACKAGE_EVERY_MACHINE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_ARCHITECTURE all)
    set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS OFF)
  endif()
endmacro()

vantorel_package(command vantorel graphics
  "four-point warp of pictures and tracked shots"
  "Moves the four corners of a picture to any four points, in true perspective:"
  "screen replacement, sign and billboard inserts, matching a planar track. The"
  "command renders stills and sequences over a plate, from the corners that many"
  "trackers write. The effect itself comes as a module that hosts load."
  SUGGESTS vantorel-doc)
vantorel_package(docs vantorel-doc doc
  "guides to the four-point warp Vantorel"
  "How to use the command, trackers' files, video editors, Python and a render"
  "farm; how to write a host, with a complete example; how Vantorel works, and"
  "how fast it is."
  EVERY_MACHINE)
vantorel_package(records vantorel-dev devel
  "records of the interface between Vantorel and its hosts"
  "The header that a program needs to load the effect by itself: every record,"
  "callback, suite, flag, command and error code. For programs in C++ that have"
  "no interface to effects yet, libvantorel-host-dev does all of this."
  DEPENDS libvantorel-math-dev SUGGESTS "vantorel, vantorel-doc" EVERY_MACHINE)
vantorel_package(host libvantorel-host-dev libdevel
  "library that renders with the four-point warp Vantorel"
  "The embedded host: loads the effect and renders frames with it, with threads,"
  "animated corners, motion blur and proxies. A static library, its headers, and"
  "packages for CMake and pkg-config."
  DEPENDS libexpected-dev SUGGESTS vantorel)
set(math_runtime libvantorel-math${PROJECT_VERSION_MAJOR})
configure_file(${VANTOREL_PACKAGE_TEXTS}/shlibs.in ${PROJECT_BINARY_DIR}/shlibs @ONLY)
vantorel_package(math-runtime ${math_runtime} libs
  "matrices and rational numbers of the four-point warp Vantorel"
  "3x3 matrices of doubles with their points, vectors and rectangles, and exact"
  "32-bit rational numbers that predict overflow. This package holds the shared"
  "library.")
set(CPACK_DEBIAN_MATH-RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/shlibs ${VANTOREL_PACKAGE_TEXTS}/triggers)
vantorel_package(math libvantorel-math-dev libdevel
  "matrices and rational numbers of Vantorel, for development"
  "3x3 matrices of doubles with their points, vectors and rectangles, and exact"
  "32-bit rational numbers that predict overflow. This package holds the header,"
  "the static library, and packages for CMake and pkg-config."
  DEPENDS "${math_runtime} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
vantorel_package(frei0r frei0r-vantorel graphics
  "four-point warp for programs that load frei0r plug-ins"
  "Puts a clip onto four corners, in true perspective: in ffmpeg, GStreamer, melt"
  "and the editors that are built on MLT, whose lists of effects it joins. The"
  "effect is linked in."
  ENHANCES "ffmpeg, gstreamer1.0-plugins-bad, kdenlive, melt, shotcut")
vantorel_package(ofx openfx-vantorel graphics
  "four-point warp for programs that host OpenFX plug-ins"
  "Puts a picture onto four corners, in true perspective, in compositing and"
  "grading programs: at 8, 16 and 32 bit, with handles in the viewer. The effect"
  "is linked in.")
if(TARGET vantorel_python)
  math(EXPR next_python_minor "${VANTOREL_PYTHON_MINOR} + 1")
  vantorel_package(python python3-vantorel python
    "four-point warp for NumPy pictures"
    "Moves the corners of NumPy pictures to any four points, in true perspective:"
    "8 bit, 16 bit and float, grey, RGB and RGBA, with any strides. Reads the files"
    "of many trackers. The effect is linked in."
    DEPENDS "python3 (>= 3.${VANTOREL_PYTHON_MINOR}), python3 (<< 3.${next_python_minor}), python3-numpy")
endif()

include(CPack)
