# Libraries of others that the tools and benchmarks use, as 32-bit targets:
#   nx_library32(lmdb32)       lmdb.h
#   nx_library32(xxhash32)     xxhash.h
#   nx_library32(curl32)       curl/curl.h
#   nx_library32(benchmark32)  Google Benchmark
#   nx_library32(icu32)        ICU; its 32-bit libraries come without the links of a
#                              development package, and each version has its own names
# Configure fails where one is missing, naming its package.

function(nx_library32 target)
  if(TARGET ${target})
    return()
  endif()
  if(target STREQUAL "lmdb32")
    set(packages "liblmdb-dev:i386")
    set(header lmdb.h)
    set(libraries lmdb)
  elseif(target STREQUAL "xxhash32")
    set(packages "libxxhash-dev:i386")
    set(header xxhash.h)
    set(libraries xxhash)
  elseif(target STREQUAL "curl32")
    set(packages "libcurl4-openssl-dev:i386")
    set(header curl/curl.h)
    set(libraries curl)
  elseif(target STREQUAL "benchmark32")
    set(packages "libbenchmark-dev:i386")
    set(header benchmark/benchmark.h)
    set(libraries benchmark)
  elseif(target STREQUAL "icu32")
    set(packages "libicu-dev, libicu72:i386")
    set(header unicode/uvernum.h)
  else()
    message(FATAL_ERROR "${target} is not known in cmake/Libraries32.cmake")
  endif()

  find_path(NX_${target}_INCLUDE ${header})
  if(target STREQUAL "icu32" AND NX_icu32_INCLUDE)
    file(STRINGS "${NX_icu32_INCLUDE}/${header}" version REGEX "define U_ICU_VERSION_MAJOR_NUM")
    string(REGEX MATCH "[0-9]+" version "${version}")
    set(libraries libicui18n.so.${version} libicuuc.so.${version})
  endif()
  set(files)
  foreach(library ${libraries})
    find_library(NX_${target}_${library} NAMES ${library})
    list(APPEND files ${NX_${target}_${library}})
  endforeach()
  if(NOT NX_${target}_INCLUDE OR "${files}" MATCHES "NOTFOUND")
    message(FATAL_ERROR "${header} or its 32-bit library is missing; scripts/setup installs it (${packages}).")
  endif()

  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE "${NX_${target}_INCLUDE}")
  target_link_libraries(${target} INTERFACE ${files})
endfunction()
