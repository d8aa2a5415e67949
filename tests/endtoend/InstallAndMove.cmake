# Installs the build tree BUILD to a place, and moves what was installed from there to TARGET.
file(REMOVE_RECURSE ${TARGET} ${TARGET}-at-first)
execute_process(
    COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${TARGET}-at-first
    COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${TARGET}-at-first ${TARGET})
