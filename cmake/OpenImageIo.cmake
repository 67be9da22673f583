# Finds OpenImageIO. Debian's package names the folder of OpenCV's headers among its own, which only one header of its
# needs, and which CMake refuses where that package is not installed: folders that do not exist are left out.
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
