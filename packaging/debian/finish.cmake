# Makes of a staged installation what Debian's rules ask of a package. Run by CPack.
set(stage ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${stage}/usr/share/doc/kpx)
configure_file(${CMAKE_CURRENT_LIST_DIR}/lintian-overrides
               ${stage}/usr/share/lintian/overrides/kpx COPYONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md ${stage}/usr/share/doc/kpx/changelog
               COPYONLY)
file(GLOB compressed ${stage}/usr/share/man/man*/*.[1-8] ${stage}/usr/share/man/*/man*/*.[1-8]
     ${stage}/usr/share/doc/kpx/changelog)
execute_process(COMMAND gzip -9nf ${compressed} COMMAND_ERROR_IS_FATAL ANY)

# Whatever the builder's umask. The users' directory too: until postinst has given it to the
# spooler's group nobody is to write there. The leading zeros clear the bits beyond these nine.
execute_process(COMMAND find ${stage} -type d -exec chmod 00755 {} +
                COMMAND_ERROR_IS_FATAL ANY)
