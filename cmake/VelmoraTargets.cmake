# How the storeys are made. Each function fixes what its kind of target may see, so that a forbidden
# include or call fails to compile or to link.
#
#   velmora_program_library  a subsystem of the program: standard library, base, contracts, forms
#   velmora_backend_library  a back-end: the same plus the system libraries it names
#   velmora_test             a test executable, registered with ctest

include(VelmoraForms)
include(VelmoraPrecompiled)

# velmora_sources(out [part...])  the sources of the calling folder, or of it and these folders in it
function(velmora_sources out)
    set(patterns "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    foreach(part IN LISTS ARGN)
        list(APPEND patterns "${CMAKE_CURRENT_SOURCE_DIR}/${part}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/${part}/*.h")
    endforeach()
    file(GLOB found CONFIGURE_DEPENDS ${patterns})
    set(${out} ${found} PARENT_SCOPE)
endfunction()

# What waits for a hand most of the time is built small: its code lies in memory whether it runs or not. What
# computes (FAST) is built as the preset says.
function(velmora_built_small name)
    target_compile_options(${name} PRIVATE "$<$<CONFIG:Release>:-Os>")
endfunction()

# Of a library that is built small, the sources that a transfer goes through at each of a million packets.
function(velmora_built_fast)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O2>")
endfunction()

# Subsystems call one another through the one Velmora object, so they are object libraries that
# src/CMakeLists.txt joins into velmora_program.
function(velmora_program_library name)
    cmake_parse_arguments(arg "FAST" "" "" ${ARGN})
    velmora_sources(sources)
    add_library(${name} OBJECT ${sources})
    target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC velmora_base velmora_forms PRIVATE velmora_flags)
    velmora_form_designs(${name})
    if(NOT arg_FAST)
        velmora_built_small(${name})
    endif()
    velmora_precompiled(${name} cmake/precompiled/standard.h)
endfunction()

# velmora_backend_library(name [FAST] [PARTS folder...] [LIBRARIES library...])
function(velmora_backend_library name)
    cmake_parse_arguments(arg "FAST" "" "PARTS;LIBRARIES" ${ARGN})
    velmora_sources(sources ${arg_PARTS})
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC velmora_base PRIVATE velmora_flags ${arg_LIBRARIES})
    if(NOT arg_FAST)
        velmora_built_small(${name})
    endif()
    if("Qt6::Widgets" IN_LIST arg_LIBRARIES)
        velmora_precompiled(${name} cmake/precompiled/toolkit.h Qt6::Widgets)
    else()
        velmora_precompiled(${name} cmake/precompiled/standard.h)
    endif()
endfunction()

# What "./test --threads" builds: the tests with that label.
add_custom_target(velmora_threads)

# velmora_test(NAME name SOURCES ... LIBRARIES ... [LABELS ...] [TIMEOUT seconds] [COST seconds])
include(GoogleTest)
function(velmora_test)
    cmake_parse_arguments(arg "" "NAME;TIMEOUT;COST;PRECOMPILED" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    add_executable(${arg_NAME} ${arg_SOURCES})
    if("Qt6::Widgets" IN_LIST arg_LIBRARIES)
        velmora_precompiled(${arg_NAME} cmake/precompiled/window_tests.h Qt6::Widgets GTest::gmock)
    elseif(arg_PRECOMPILED)
        velmora_precompiled(${arg_NAME} ${arg_PRECOMPILED} velmora_program velmora_fakes GTest::gmock)
    else()
        velmora_precompiled(${arg_NAME} cmake/precompiled/tests.h GTest::gmock)
    endif()
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest_main
        velmora_flags)
    target_include_directories(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}/src" "${CMAKE_SOURCE_DIR}")
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    # Who watches each word of memory that two threads share takes its time.
    if(VELMORA_SANITIZE STREQUAL "thread")
        math(EXPR arg_TIMEOUT "4 * ${arg_TIMEOUT}")
    endif()
    # One ctest entry an executable: start-up of a process for each case would cost more than the
    # cases; the run prints each case by name on failure.
    add_test(NAME ${arg_NAME} COMMAND ${arg_NAME} --gtest_brief=1)
    # Whatever lies in tests/unit is asked for by that label; none can be without it.
    if(CMAKE_CURRENT_SOURCE_DIR MATCHES "^${CMAKE_SOURCE_DIR}/tests/unit/")
        list(APPEND arg_LABELS unit)
        list(REMOVE_DUPLICATES arg_LABELS)
    endif()
    # What became of each case is kept for scripts/skipped.py.
    set_tests_properties(${arg_NAME} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}"
        ENVIRONMENT_MODIFICATION
            "GTEST_OUTPUT=set:xml:${CMAKE_BINARY_DIR}/Testing/cases/${arg_NAME}.xml")
    # The longest begin first, so that the last one is not alone; what is usual, where it is long.
    if(arg_COST)
        set_tests_properties(${arg_NAME} PROPERTIES COST ${arg_COST})
    endif()
    # What listens to the sound as it comes has fewer beside it: a machine that cannot keep up is heard.
    if("recorded" IN_LIST arg_LABELS)
        set_tests_properties(${arg_NAME} PROPERTIES PROCESSORS 2)
    endif()
    # What listens is not run under the sanitizers, see ./test, and not built for them either.
    if("threads" IN_LIST arg_LABELS)
        add_dependencies(velmora_threads ${arg_NAME})
    endif()
    if(VELMORA_SANITIZE AND "recorded" IN_LIST arg_LABELS)
        set_target_properties(${arg_NAME} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
endfunction()
