# Installs the build tree BUILD into a scratch prefix below WORK, and builds and
# runs the project SOURCE with the package found there, once through CMake and,
# where pkg-config is present, once through it. COMPILER is the C++ compiler.

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\n${output}")
  endif()
endfunction()

set(prefix "${WORK}/prefix")
file(REMOVE_RECURSE "${WORK}")
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

set(ENV{CXXFLAGS} "")
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G ${GENERATOR} -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/consumer)

find_program(pkgConfig NAMES pkg-config pkgconf)
if(pkgConfig)
  file(GLOB_RECURSE description "${prefix}/*.pc")
  get_filename_component(directory "${description}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} "${directory}")
  execute_process(COMMAND ${pkgConfig} --cflags --libs nx21Rtms OUTPUT_VARIABLE flags
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  # Position dependent here: such programs see the library's functions through their own table.
  run(${COMPILER} -std=c++17 -fno-pie -no-pie ${SOURCE}/main.cpp -o ${WORK}/with-pkg-config ${flags})
  execute_process(COMMAND ${pkgConfig} --variable=libdir nx21Rtms OUTPUT_VARIABLE libraries
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{LD_LIBRARY_PATH} "${libraries}")
  run(${WORK}/with-pkg-config)
endif()
message(STATUS "the installed package builds and runs a user's program")
