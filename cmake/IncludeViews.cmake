# Restricts which folders a target may include. A header is included by its path from the top of the tree
# ("support/PF_HostRecords.h"), and a target finds only the folders whose views it links. A view is a folder in the
# build tree that contains a symbolic link to one source folder (or to single headers of it).

# vantorel_view(NAME FOLDER [HEADER...]): the interface target NAME gives access to FOLDER, or only to the named headers
# in it.
function(vantorel_view name folder)
  set(root ${CMAKE_BINARY_DIR}/views/${name})
  set(source ${PROJECT_SOURCE_DIR}/${folder})
  # Start from an empty view: if a link to the whole folder were left over, links to single headers would be created
  # inside the source tree.
  file(REMOVE_RECURSE ${root})
  if(ARGN)
    foreach(header IN LISTS ARGN)
      get_filename_component(parent ${root}/${folder}/${header} DIRECTORY)
      file(MAKE_DIRECTORY ${parent})
      file(CREATE_LINK ${source}/${header} ${root}/${folder}/${header} SYMBOLIC)
    endforeach()
  else()
    get_filename_component(parent ${root}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${source} ${root}/${folder} SYMBOLIC)
  endif()
  add_library(${name} INTERFACE)
  target_include_directories(${name} INTERFACE $<BUILD_INTERFACE:${root}>)
endfunction()
