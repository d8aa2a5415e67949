# Warnings are errors in all of our own code.
add_library(vellmora_options INTERFACE)
target_compile_options(vellmora_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
target_compile_definitions(vellmora_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
    QT_DISABLE_DEPRECATED_BEFORE=0x060400
    POINTERHOLDER_TRANSITION=4)

option(VELLMORA_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
if(VELLMORA_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

option(VELLMORA_FUZZ "Build the fuzzers (Clang only)" OFF)
if(VELLMORA_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
