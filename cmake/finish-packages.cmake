# Run by CPack on the packages' files before it packs them: what Debian's policy wants of a package and
# nobody of an installation by hand.
set(share ${CPACK_TEMPORARY_DIRECTORY}/runtime/usr/share)
set(doc ${share}/doc/tolvane-link)
file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/debian/changelog ${doc}/changelog.Debian)
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${pages} ${doc}/changelog ${doc}/changelog.Debian
    COMMAND_ERROR_IS_FATAL ANY)
file(COPY ${CMAKE_CURRENT_LIST_DIR}/debian/overrides/ DESTINATION ${share}/lintian/overrides)

set(development ${CPACK_TEMPORARY_DIRECTORY}/development/usr/share/doc)
file(MAKE_DIRECTORY ${development})
file(CREATE_LINK tolvane-link ${development}/tolvane-link-dev SYMBOLIC)
