# Which folder may include which is stated by the targets: a header is included by its path from the top of the tree
# ("support/PF_HostRecords.h"), and a target sees only the folders whose views it links. A view is a folder in the build
# tree that holds a link to one source folder (or to single headers of one).

# vantorel_view(NAME FOLDER [HEADER...]): the interface target NAME shows FOLDER, or only the named headers of it.
function(vantorel_view name folder)
  set(root ${CMAKE_BINARY_DIR}/views/${name})
  set(source ${PROJECT_SOURCE_DIR}/${folder})
  # A view begins anew: a link left of the whole folder would have links to single headers made in the source itself.
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
