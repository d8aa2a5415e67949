# Adds what a Debian package has and an installation has not, and gives every file one time, so that the package depends
# on nothing but its content.
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(documents ${share}/doc/vellmora)
file(MAKE_DIRECTORY ${documents})
file(COPY_FILE ${CPACK_VELLMORA_COPYRIGHT} ${documents}/copyright)

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # heeds SOURCE_DATE_EPOCH
file(WRITE ${documents}/changelog
"vellmora (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
file(GLOB_RECURSE manuals ${share}/man/*.1)
execute_process(COMMAND gzip -9nf ${documents}/changelog ${manuals} COMMAND_ERROR_IS_FATAL ANY)

execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference --date=${date} {} +
    COMMAND_ERROR_IS_FATAL ANY)
