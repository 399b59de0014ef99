# Form designs: every *.form of the calling folder becomes a class of the target, compiled by formc to
# <build>/generated/<folder below src>/<Name>.design.{h,cpp}. The headers are included from anywhere as
# "<folder>/<Name>.design.h"; velmora_generated, which every user of the control model links, makes
# sure that they exist before anything that may include them is compiled.
function(velmora_form_designs target)
    set(generated "${CMAKE_BINARY_DIR}/generated")
    set(skin "${CMAKE_SOURCE_DIR}/assets/skin")
    set(texts "${CMAKE_SOURCE_DIR}/assets/texts")
    # The form whose pictures and hand the skin hands out.
    set(model "${CMAKE_SOURCE_DIR}/src/playback/Main.form")
    file(GLOB designs CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.form")
    if(NOT designs)
        return()
    endif()
    file(GLOB text_files CONFIGURE_DEPENDS "${texts}/*.txt")
    file(GLOB drawings CONFIGURE_DEPENDS "${skin}/*.svg")
    file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
    set(outputs)
    foreach(design IN LISTS designs)
        get_filename_component(name "${design}" NAME_WE)
        set(header "${generated}/${folder}/${name}.design.h")
        set(source "${generated}/${folder}/${name}.design.cpp")
        add_custom_command(
            OUTPUT "${header}" "${source}"
            COMMAND velmora_formc "${design}" --folder "${folder}" --skin "${skin}" --texts "${texts}"
                    --model "${model}" --header "${header}" --source "${source}"
            DEPENDS velmora_formc "${design}" "${model}" "${skin}/palette.txt" ${drawings} ${text_files}
            COMMENT "Compiling the form ${folder}/${name}"
            VERBATIM)
        list(APPEND outputs "${header}" "${source}")
    endforeach()
    target_sources(${target} PRIVATE ${outputs})
    add_custom_target(${target}_designs DEPENDS ${outputs})
    add_dependencies(velmora_generated ${target}_designs)
    add_dependencies(${target} ${target}_designs)
endfunction()

# The texts that follow the language: constants, and the class of the messages, as
# <build>/generated/settings/{texts.h,Language.h,Language.cpp}.
function(velmora_language_texts target)
    set(generated "${CMAKE_BINARY_DIR}/generated/settings")
    set(texts "${CMAKE_SOURCE_DIR}/assets/texts")
    file(GLOB text_files CONFIGURE_DEPENDS "${texts}/*.txt")
    set(outputs "${generated}/texts.h" "${generated}/Language.h" "${generated}/Language.cpp")
    add_custom_command(
        OUTPUT ${outputs}
        COMMAND velmora_formc --texts "${texts}" --constants "${generated}/texts.h"
                --header "${generated}/Language.h" --source "${generated}/Language.cpp"
        DEPENDS velmora_formc ${text_files}
        COMMENT "Compiling the texts in all languages"
        VERBATIM)
    target_sources(${target} PRIVATE ${outputs})
    add_custom_target(${target}_texts DEPENDS ${outputs})
    add_dependencies(velmora_generated ${target}_texts)
    add_dependencies(${target} ${target}_texts)
endfunction()
