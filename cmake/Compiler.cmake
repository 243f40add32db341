# What every target of the project is compiled with.
add_library(zk_compiler INTERFACE)
target_compile_options(zk_compiler INTERFACE -Wall -Wextra $<$<BOOL:${ZK_WARNINGS_AS_ERRORS}>:-Werror>)

# The bits of a result are part of the interface: the compiler must not fuse multiplications and additions.
target_compile_options(zk_compiler INTERFACE -ffp-contract=off)

# CMake's own choice is -O3, which takes a tenth longer; where it is worth that, a room asks for it.
add_compile_options($<$<CONFIG:Release>:-O2>)

# g++ collects its garbage each time its heap has doubled. With room for a whole source it need not, and is a sixth faster.
add_compile_options("$<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=1500000>")

if(ZK_SANITIZE)
  # -O1 and line tables: what a report needs, in the shortest build.
  add_compile_options(-O1 -g1 -fsanitize=${ZK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZK_SANITIZE})
endif()

find_program(CCACHE ccache)
if(CCACHE)
  # What a compiler cache needs to serve sources with a precompiled header. It must compare the files that a source reads
  # and not the preprocessed text: a precompiled header whose comments have changed since declares everything twice.
  set(cached ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_DEPEND=true ${CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${cached})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${cached})
endif()
