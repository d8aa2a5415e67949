# What allocates the memory of the document process: parsing and writing a document is many small pieces, for which the C
# library's own allocator takes a fifth of the time more. The sanitizers bring theirs.
add_library(vellmora_allocator INTERFACE)
if(NOT VELLMORA_SANITIZE AND NOT VELLMORA_FUZZ)
    find_library(VELLMORA_JEMALLOC jemalloc REQUIRED)
    target_link_libraries(vellmora_allocator INTERFACE ${VELLMORA_JEMALLOC})
    target_compile_definitions(vellmora_allocator INTERFACE VELLMORA_JEMALLOC)
endif()
