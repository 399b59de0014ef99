# Form designs: every *.form of the calling folder becomes a class of the target, compiled by formc to
# <build>/generated/<folder below src>/<Name>.design.{h,cpp}. The headers are included from anywhere as
# "<folder>/<Name>.design.h"; velmora_generated, which every user of the control model links, makes
# sure that they exist before anything that may include them is compiled.
function(velmora_form_designs target)
    set(generated "${CMAKE_BINARY_DIR}/generated")
    set(skin "${CMAKE_SOURCE_DIR}/assets/skin")
    file(GLOB designs CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.form")
    if(NOT designs)
        return()
    endif()
    file(GLOB drawings CONFIGURE_DEPENDS "${skin}/*.svg")
    file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
    set(outputs)
    foreach(design IN LISTS designs)
        get_filename_component(name "${design}" NAME_WE)
        set(header "${generated}/${folder}/${name}.design.h")
        set(source "${generated}/${folder}/${name}.design.cpp")
        add_custom_command(
            OUTPUT "${header}" "${source}"
            COMMAND velmora_formc "${design}" --folder "${folder}" --skin "${skin}"
                    --header "${header}" --source "${source}"
            DEPENDS velmora_formc "${design}" "${skin}/palette.txt" ${drawings}
            COMMENT "Compiling the form ${folder}/${name}"
            VERBATIM)
        list(APPEND outputs "${header}" "${source}")
    endforeach()
    target_sources(${target} PRIVATE ${outputs})
    add_custom_target(${target}_designs DEPENDS ${outputs})
    add_dependencies(velmora_generated ${target}_designs)
    add_dependencies(${target} ${target}_designs)
endfunction()
