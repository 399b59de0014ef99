# Options and compiler settings that every target shares.

option(VELMORA_TESTS "Build the tests" ON)
option(VELMORA_BENCH "Build the benchmarks" OFF)
# For us, not for whoever builds this with the next compiler.
option(VELMORA_WARNINGS_ARE_ERRORS "Stop at a warning" OFF)
option(VELMORA_FUZZ "Build the fuzz targets (clang)" OFF)
set(VELMORA_SANITIZE "" CACHE STRING "Sanitizers for every target, e.g. address,undefined")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(VELMORA_CCACHE ccache)
if(VELMORA_CCACHE)
    # What it needs to know of to keep what is compiled with precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros
        "${VELMORA_CCACHE}")
endif()

# A hundred test programs are linked in every build; this linker takes a fifth of the usual one's time. What users run
# is linked by the usual one, see below.
find_program(VELMORA_MOLD mold)
if(VELMORA_MOLD)
    add_link_options("$<$<NOT:$<CONFIG:Release>>:-fuse-ld=mold>")
endif()

add_library(velmora_flags INTERFACE)
target_compile_options(velmora_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    -Wcast-align -Wnull-dereference -Wformat=2 -fno-strict-aliasing)
# Errors know where they were raised; what users run tells nothing of the folder that it was built in.
target_compile_options(velmora_flags INTERFACE
    "$<$<NOT:$<CONFIG:Debug>>:-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=>")
if(VELMORA_WARNINGS_ARE_ERRORS)
    target_compile_options(velmora_flags INTERFACE -Werror)
endif()
# g++ 12 reports false positives of these in optimised standard library code.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(velmora_flags INTERFACE -Wno-restrict -Wno-null-dereference
        -Wno-maybe-uninitialized -Wno-dangling-pointer)
endif()
# What the compilers need for precompiled headers that ccache may keep. With them g++ 12 forgets which header is the
# system's and warns of what it inlines from there; the builds for users, without them, keep these warnings.
if(NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    target_compile_options(velmora_flags INTERFACE
        "$<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess;-Wno-array-bounds;-Wno-stringop-overread;-Wno-stringop-overflow>" "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endif()
# What nothing calls is left out, and the places that the loader corrects are told in a tenth of the room: a running
# program would hold the pages of both. The loader has to know of the second, and the linker has to say so.
target_compile_options(velmora_flags INTERFACE "$<$<CONFIG:Release>:-ffunction-sections;-fdata-sections>")
target_link_options(velmora_flags INTERFACE "$<$<CONFIG:Release>:LINKER:--gc-sections>")
include(CheckCXXSourceRuns)
set(CMAKE_REQUIRED_FLAGS -fPIE)
set(CMAKE_REQUIRED_LINK_OPTIONS -pie LINKER:-z,pack-relative-relocs)
check_cxx_source_runs("int a; int *volatile b = &a; int main() { return b != &a; }" VELMORA_PACKED_RELOCATIONS)
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_LINK_OPTIONS)
if(VELMORA_PACKED_RELOCATIONS)
    target_link_options(velmora_flags INTERFACE "$<$<CONFIG:Release>:LINKER:-z,pack-relative-relocs>")
endif()
if(VELMORA_SANITIZE)
    target_compile_options(velmora_flags INTERFACE
        -fsanitize=${VELMORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(velmora_flags INTERFACE -fsanitize=${VELMORA_SANITIZE})
    # For the few tests that measure what a sanitizer changes; compilers tell of it in ways of their own.
    target_compile_definitions(velmora_flags INTERFACE VELMORA_SANITIZED)
endif()
if(VELMORA_FUZZ)
    target_compile_options(velmora_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
