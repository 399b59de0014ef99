# velmora_precompiled(target header [library...]) has the files of the target begin with a header of
# cmake/precompiled, or with another header of the tree, which is read once for all targets that ask for it.
#
# A library and a program are compiled in different ways, so each kind has a copy of its own. The libraries
# are those whose headers are in it. The builds for users go without (CMAKE_DISABLE_PRECOMPILE_HEADERS),
# which shows that every file includes what it uses.
#
# What begins with a header of the tests is made without optimising: it is compiled a third faster and runs for seconds.
function(velmora_precompiled target header)
    string(MAKE_C_IDENTIFIER "precompiled_${header}" owner)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        string(APPEND owner "_of_programs")
    endif()
    set(plain "$<$<CONFIG:Debug>:-O0>")
    if(NOT header MATCHES "^tests/")
        set(plain "")
    endif()
    if(NOT TARGET ${owner})
        set(nothing "${CMAKE_SOURCE_DIR}/cmake/precompiled/nothing.cpp")
        if(type STREQUAL "EXECUTABLE")
            add_executable(${owner} EXCLUDE_FROM_ALL "${nothing}")
        else()
            add_library(${owner} OBJECT EXCLUDE_FROM_ALL "${nothing}")
        endif()
        target_include_directories(${owner} PRIVATE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/src")
        target_link_libraries(${owner} PRIVATE velmora_flags ${ARGN})
        target_compile_options(${owner} PRIVATE ${plain})
        target_precompile_headers(${owner} PRIVATE "${CMAKE_SOURCE_DIR}/${header}")
    endif()
    target_compile_options(${target} PRIVATE ${plain})
    target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()
