# Finds OpenImageIO. Debian's package lists OpenCV's include folder as one of its own, although only one of its headers
# needs it. CMake would refuse it if OpenCV is not installed, so folders that do not exist are removed.
find_package(OpenImageIO REQUIRED)

get_target_property(openimageio_folders OpenImageIO::OpenImageIO INTERFACE_INCLUDE_DIRECTORIES)
set(openimageio_existing_folders "")
foreach(folder IN LISTS openimageio_folders)
  if(EXISTS ${folder})
    list(APPEND openimageio_existing_folders ${folder})
  endif()
endforeach()
set_target_properties(OpenImageIO::OpenImageIO PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "${openimageio_existing_folders}")
