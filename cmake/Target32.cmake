# The target is 32-bit x86 Linux. One floating expression has one result whatever
# the optimisation, hence SSE2 in place of the x87 registers.

set(NX_TARGET_FLAGS -m32 -msse2 -mfpmath=sse)
string(REPLACE ";" " " NX_TARGET_FLAGS_TEXT "${NX_TARGET_FLAGS}")

# Ask the compiler itself before CMake does: its own complaint would run over pages.
if(NOT NX_TARGET_CHECKED)
  if(CMAKE_CXX_COMPILER)
    set(compiler "${CMAKE_CXX_COMPILER}")
  elseif(DEFINED ENV{CXX})
    separate_arguments(compiler UNIX_COMMAND "$ENV{CXX}")
  else()
    set(compiler c++)
  endif()
  set(probe "${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/probe32")
  file(WRITE "${probe}.cpp" "#include <new>\nint main() { return sizeof(void*) == 4 ? 0 : 1; }\n")
  execute_process(COMMAND ${compiler} ${NX_TARGET_FLAGS} "${probe}.cpp" -o "${probe}"
                  RESULT_VARIABLE built OUTPUT_QUIET ERROR_QUIET)
  set(ran 1)
  if(built EQUAL 0)
    execute_process(COMMAND "${probe}" RESULT_VARIABLE ran OUTPUT_QUIET ERROR_QUIET)
  endif()
  list(JOIN compiler " " compiler)
  if(NOT ran EQUAL 0)
    message(FATAL_ERROR "${compiler} cannot build and run 32-bit programs here; "
                        "install its 32-bit libraries (Debian: g++-multilib).")
  endif()
  set(NX_TARGET_CHECKED ON CACHE INTERNAL "the compiler builds and runs 32-bit programs")
endif()

# Flags of the user come beside the target's, not in their place.
foreach(language CXX C)
  if(DEFINED CMAKE_${language}_FLAGS AND NOT CMAKE_${language}_FLAGS MATCHES "${NX_TARGET_FLAGS_TEXT}")
    set(CMAKE_${language}_FLAGS "${NX_TARGET_FLAGS_TEXT} ${CMAKE_${language}_FLAGS}")
  else()
    set(CMAKE_${language}_FLAGS_INIT "${NX_TARGET_FLAGS_TEXT}")
  endif()
  enable_language(${language})
endforeach()
if(NOT CMAKE_CXX_SIZEOF_DATA_PTR EQUAL 4)
  message(FATAL_ERROR "CMAKE_CXX_FLAGS undo ${NX_TARGET_FLAGS_TEXT}: the library is built for 32 bits only.")
endif()
