# Writes OUTPUT, a source file that contains the page's files: cmake -D OUTPUT=FILE -D FOLDER=PAGE -D NAMES=A,B -P
# EmbedPage.cmake
string(REPLACE "," ";" names "${NAMES}")
set(arrays "")
set(entries "")
set(index 0)
foreach(name IN LISTS names)
  file(READ ${FOLDER}/${name} bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(APPEND arrays "constexpr unsigned char kFile${index}[] = {${bytes}};\n")
  cmake_path(GET name EXTENSION LAST_ONLY extension)
  if(extension STREQUAL ".html")
    set(type "text/html; charset=utf-8")
  elseif(extension STREQUAL ".css")
    set(type "text/css; charset=utf-8")
  elseif(extension STREQUAL ".svg")
    set(type "image/svg+xml")
  else()
    set(type "text/javascript; charset=utf-8")
  endif()
  string(APPEND entries "    {\"${name}\", \"${type}\", text(kFile${index})},\n")
  math(EXPR index "${index} + 1")
endforeach()
file(WRITE ${OUTPUT} "// Made from the files of the page.
#include \"view/Page.h\"

namespace vantorel::view {

namespace {

${arrays}
template <std::size_t N>
std::string_view text(const unsigned char (&bytes)[N]) {
  return {reinterpret_cast<const char*>(bytes), N};
}

}  // namespace

std::span<const PageFile> pageFiles() {
  static const PageFile kFiles[]{
${entries}  };
  return kFiles;
}

}  // namespace vantorel::view
")
