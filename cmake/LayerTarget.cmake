# vellmora_layer(NAME SOURCES … LINK … [PRIVATE_LINK …]): the static library `vellmora_NAME`.
# Headers are included by their path from the top folder, so that each include names its layer.
function(vellmora_layer name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
    add_library(vellmora_${name} STATIC ${ARG_SOURCES})
    target_include_directories(vellmora_${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(vellmora_${name}
        PUBLIC ${ARG_LINK}
        PRIVATE vellmora_options ${ARG_PRIVATE_LINK})
endfunction()
