# velmora_fuzz_target(NAME name SOURCES ... LIBRARIES ... CORPUS folder)
#
# A parser of outside bytes, called through LLVMFuzzerTestOneInput. In a fuzzing build (clang, the
# "fuzz" preset) the target is a libFuzzer program, and its ctest entry fuzzes for a short while
# from the corpus. In every other build the same code is linked with a small main that replays the
# corpus, so that each crash once found stays tested everywhere.

set(VELMORA_FUZZ_RUNS 20000 CACHE STRING "Inputs that the ctest entry of a fuzz target tries")

function(velmora_fuzz_target)
    cmake_parse_arguments(arg "" "NAME;CORPUS" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${arg_NAME} ${arg_SOURCES})
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} velmora_flags)
    target_include_directories(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}/src" "${CMAKE_SOURCE_DIR}")
    if("velmora_fakes" IN_LIST arg_LIBRARIES)
        target_sources(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}/tests/fuzz/complaints.cpp")
    endif()
    get_filename_component(corpus "${arg_CORPUS}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
    if(VELMORA_FUZZ)
        target_link_options(${arg_NAME} PRIVATE -fsanitize=fuzzer)
        set(found "${CMAKE_CURRENT_BINARY_DIR}/${arg_NAME}_found")
        file(MAKE_DIRECTORY "${found}")
        add_test(NAME ${arg_NAME} COMMAND ${arg_NAME} -runs=${VELMORA_FUZZ_RUNS} -timeout=10
                 -rss_limit_mb=2048 "${found}" "${corpus}")
    else()
        target_sources(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}/tests/fuzz/replay_main.cpp")
        add_test(NAME ${arg_NAME} COMMAND ${arg_NAME} "${corpus}")
    endif()
    set_tests_properties(${arg_NAME} PROPERTIES LABELS fuzz TIMEOUT 300)
endfunction()
