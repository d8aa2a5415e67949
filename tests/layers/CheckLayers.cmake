# Fails where a source file under ROOT includes something that its layer must not know.
#
#   app → ui, editor, export, library → platform ← renderer → confinement
#
# Our own headers are included by their path from the top, so the first folder of an include names its layer.

cmake_minimum_required(VERSION 3.25)

set(allowed_platform platform)
set(allowed_library library platform)
set(allowed_export export library platform)
set(allowed_editor editor library platform)
set(allowed_ui ui library platform)
set(allowed_confinement confinement)
set(allowed_renderer renderer confinement platform)
set(allowed_app app ui editor export library platform)

# Folders whose code must not know widgets, nor the platform's folders that do.
set(withoutWidgets "^(library|export|platform/(error|geometry|files|defaults|time|text|image|fonts|colors|drop|pdf))/")
set(platformWithWidgets "^platform/(view/PDFView|panels/DialogFilePanels)")
# The libraries behind the platform, and where alone they are called.
set(pdfLibraryFolder "^platform/pdf/((annotations/fonts|drawing|reading|writing)/)?[^/]+$")
set(engineFolder "^renderer/")

set(wrong "")

function(report file include)
    message(STATUS "wrong arrow: ${file} includes ${include}")
    set(wrong TRUE PARENT_SCOPE)
endfunction()

function(is_widget_header include result)
    set(${result} FALSE PARENT_SCOPE)
    if(include MATCHES "^QtWidgets/")
        set(${result} TRUE PARENT_SCOPE)
    endif()
    foreach(folder IN LISTS WIDGET_HEADERS)
        if(folder MATCHES "/QtWidgets$" AND EXISTS "${folder}/${include}")
            set(${result} TRUE PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

foreach(layer IN ITEMS platform confinement renderer library export editor ui app)
    file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/${layer}/*.h ${ROOT}/${layer}/*.cpp)
    foreach(file IN LISTS files)
        file(STRINGS ${ROOT}/${file} includes REGEX "^[ \t]*#[ \t]*include")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^[^<\"]*[<\"]([^>\"]+)[>\"].*$" "\\1" include "${line}")
            string(REGEX REPLACE "/.*$" "" first "${include}")
            if(first MATCHES "^(app|ui|editor|export|library|platform|confinement|renderer|tests|tools|bench)$" AND NOT first IN_LIST allowed_${layer})
                report(${file} ${include})
            endif()
            is_widget_header(${include} isWidget)
            if(file MATCHES "${withoutWidgets}" AND (isWidget OR include MATCHES "${platformWithWidgets}"))
                report(${file} ${include})
            endif()
            if(include MATCHES "^qpdf/" AND NOT file MATCHES "${pdfLibraryFolder}")
                report(${file} ${include})
            endif()
            if(include STREQUAL "platform/pdf/Qpdf.h" AND NOT file MATCHES "^platform/pdf/")
                report(${file} ${include})
            endif()
            if(include MATCHES "^(QtPdf/|QPdf)" AND NOT file MATCHES "${engineFolder}")
                report(${file} ${include})
            endif()
        endforeach()
    endforeach()
endforeach()

if(wrong)
    message(FATAL_ERROR "Arrows between the layers run the wrong way.")
endif()
message(STATUS "all arrows run the right way")
