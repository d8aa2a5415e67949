# Warnings in our own code. They are errors in the presets that developers test with, but not in a release: a newer
# compiler or library than any we have seen must not stop somebody from building the program.
add_library(vellmora_options INTERFACE)
target_compile_options(vellmora_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
target_compile_definitions(vellmora_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
    QT_DISABLE_DEPRECATED_BEFORE=0x060400 QT_WARN_DEPRECATED_UP_TO=0x060400
    POINTERHOLDER_TRANSITION=4)

# The same sources give the same binaries, in whatever folder they lie and however old they are:
# the first format of resources has no times of files in it.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
set(VELLMORA_RESOURCE_OPTIONS --format-version 1)

set(VELLMORA_SANITIZE "" CACHE STRING "Sanitizers to build with: address,undefined or thread")
if(VELLMORA_SANITIZE)
    # What a sanitizer adds keeps GCC from seeing that a value is always set where it is used.
    add_compile_options(-fsanitize=${VELLMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_link_options(-fsanitize=${VELLMORA_SANITIZE})
else()
    # Documents come from strangers: what distributions harden their packages with.
    add_compile_options(-fstack-protector-strong -fstack-clash-protection
        $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    add_link_options(-Wl,-z,relro,-z,now)
endif()

option(VELLMORA_FUZZ "Build the fuzzers (Clang only)" OFF)
if(VELLMORA_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
