# Language level, warnings, build types and the tools that make builds quick.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Dev: quick to build and to debug, with the library's own bounds checks.
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1 -D_GLIBCXX_ASSERTIONS")
set(CMAKE_SHARED_LINKER_FLAGS_DEV "")
set(CMAKE_MODULE_LINKER_FLAGS_DEV "")
set(CMAKE_EXE_LINKER_FLAGS_DEV "")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1")
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Dev)
endif()

find_program(TARNEX_CCACHE ccache)
if(TARNEX_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_NOHASHDIR=1 CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}
      CCACHE_SLOPPINESS=pch_defines,time_macros ${TARNEX_CCACHE})
endif()
find_program(TARNEX_LLD ld.lld)
if(TARNEX_LLD)
  add_link_options(-fuse-ld=lld)
endif()

add_library(tarnex_options INTERFACE)
# g++ 12 takes the inactive members of a variant for uninitialised reads when it optimises.
# Contraction to fused operations would make a program's counts depend on the processor.
target_compile_options(tarnex_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Woverloaded-virtual -Wno-maybe-uninitialized -Werror -fno-semantic-interposition -ffp-contract=off)
if(TARNEX_SANITIZE)
  target_compile_options(tarnex_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined)
  target_link_options(tarnex_options INTERFACE -fsanitize=address,undefined)
else()
  target_link_options(tarnex_options INTERFACE -Wl,-z,defs)
endif()
