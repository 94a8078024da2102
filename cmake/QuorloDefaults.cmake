# Settings that hold for every target of the project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(QUORLO_CCACHE ccache)
if(QUORLO_CCACHE)
  # Relative paths let every build directory share the cache.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros ${QUORLO_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)  # without it the cache takes no file that uses a precompiled header
  endif()
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # False alarms in optimised builds: std::string concatenation (GCC bug 105651), std::optional and
  # variants (105562 and its like), reference counts in libsndfile's header.
  add_compile_options(-Wno-restrict -Wno-maybe-uninitialized -Wno-use-after-free)
endif()
if(QUORLO_WERROR)
  add_compile_options(-Werror)
endif()
if(QUORLO_SANITIZE)
  add_compile_options(-fsanitize=${QUORLO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QUORLO_SANITIZE})
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(GTest REQUIRED)
