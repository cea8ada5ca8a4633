# nx_library(NAME EXPORT_NAME DIRECTORY [SIBLING...]): the shared library NAME of the
# sources in DIRECTORY, nx21::EXPORT_NAME to its users, which uses the libraries
# SIBLING. Its objects are the target NAMEObjects.

function(nx_library name exportName directory)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${directory}/*.cpp")
  add_library(${name}Objects OBJECT ${sources})
  # Exported functions may be inlined: calls inside a library stay inside (see below).
  target_compile_options(${name}Objects PRIVATE -fno-exceptions -fno-rtti -ffunction-sections -fdata-sections
    -fno-semantic-interposition)
  target_include_directories(${name}Objects PRIVATE
    "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/sibling" "${CMAKE_CURRENT_SOURCE_DIR}/${directory}")

  add_library(${name} SHARED $<TARGET_OBJECTS:${name}Objects>)
  add_library(nx21::${exportName} ALIAS ${name})
  # The libraries lie beside each other, wherever they are installed.
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    EXPORT_NAME ${exportName} INSTALL_RPATH "$ORIGIN")
  target_link_libraries(${name} PUBLIC ${ARGN})
  # Calls inside a library need not go through its export table, but for the slots.
  set(exports "${PROJECT_SOURCE_DIR}/cmake/Exports.map")
  set(slots "${PROJECT_SOURCE_DIR}/cmake/Slots.list")
  target_link_options(${name} PRIVATE -Wl,-Bsymbolic-functions -Wl,--dynamic-list-data "-Wl,--dynamic-list=${slots}"
    "-Wl,--version-script=${exports}" -Wl,--no-undefined -Wl,--gc-sections)
  set_target_properties(${name} PROPERTIES LINK_DEPENDS "${exports};${slots}")

  target_include_directories(${name} INTERFACE
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>" "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/sibling>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/nx21>")
  # A user's program is built for the libraries' target, whatever its compiler does by itself.
  target_compile_features(${name} INTERFACE cxx_std_17)
  target_compile_options(${name} INTERFACE "$<INSTALL_INTERFACE:${NX_TARGET_FLAGS}>")
  target_link_options(${name} INTERFACE "$<INSTALL_INTERFACE:-m32>")
endfunction()
