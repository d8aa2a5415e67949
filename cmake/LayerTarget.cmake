# vellmora_layer(NAME SOURCES … [PUBLIC_LINK …] [PRIVATE_LINK …]): the static library `vellmora_NAME` of this folder.
#
# The folder is the layer. Headers directly in it are the layer's interface; those in folders below it are its own.
# Includes are written as paths from the top folder ("pdf/PDFDocument.h"), and found only where they are allowed:
# each layer gets a folder of links to its interface, which those see who link it, and a link to all of itself.
# A header of a layer that is not linked, or one that is not part of its interface, is a "no such file".
set(VELLMORA_INCLUDE_DIR ${PROJECT_BINARY_DIR}/include)

function(vellmora_layer name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_LINK;PRIVATE_LINK" ${ARGN})
    set(links ${VELLMORA_INCLUDE_DIR}/${name})
    file(GLOB headers RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS *.h)
    file(REMOVE_RECURSE ${links})
    file(MAKE_DIRECTORY ${links}/interface/${name} ${links}/own)
    foreach(header IN LISTS headers)
        file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${links}/interface/${name}/${header} SYMBOLIC)
    endforeach()
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${links}/own/${name} SYMBOLIC)

    add_library(vellmora_${name} STATIC ${ARG_SOURCES})
    target_include_directories(vellmora_${name}
        PRIVATE ${links}/own
        INTERFACE ${links}/interface)
    target_link_libraries(vellmora_${name}
        PUBLIC ${ARG_PUBLIC_LINK}
        PRIVATE vellmora_options ${ARG_PRIVATE_LINK})
endfunction()
