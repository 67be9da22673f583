# A shared library exports exactly the symbols in a list; everything else stays hidden, whatever its visibility.

# vantorel_read_export_list(VARIABLE FILE): VARIABLE = the names in FILE, one a line.
function(vantorel_read_export_list variable file)
  file(STRINGS ${file} names)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

# vantorel_export_only(TARGET NAME...): TARGET exports exactly these symbols. The target's property
# VANTOREL_EXPORTS holds the names, for the test that compares them with the built file.
function(vantorel_export_only target)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.exports.ld)
  list(JOIN ARGN ";\n    " globals)
  file(CONFIGURE OUTPUT ${script} CONTENT "{\n  global:\n    @globals@;\n  local:\n    *;\n};\n" @ONLY)
  target_link_options(${target} PRIVATE -Wl,--version-script=${script})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script} VANTOREL_EXPORTS "${ARGN}")
endfunction()
