# Brings a tree that CPack is about to pack into Debian's form: a changelog under Debian's name, it and the manual pages
# compressed, the units of tarn serve and san load, and all files of the time that the package has (Package.cmake).
set(TREE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
set(DOCUMENTS ${TREE}/share/doc/tarnsolaris)

execute_process(COMMAND date -u -R -d @$ENV{SOURCE_DATE_EPOCH} OUTPUT_VARIABLE DATE OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
file(WRITE ${DOCUMENTS}/changelog
     "tarnsolaris (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
     "  * CHANGELOG.md tells what is new.\n\n"
     " -- ${CPACK_PACKAGE_CONTACT}  ${DATE}\n")
file(GLOB COMPRESSED ${DOCUMENTS}/changelog ${TREE}/share/man/man1/*.1)
execute_process(COMMAND gzip -9n ${COMPRESSED} COMMAND_ERROR_IS_FATAL ANY)
foreach(UNIT tarn-serve.service tarn-san-load.service tarn-san-load.timer)
    file(COPY ${CMAKE_CURRENT_LIST_DIR}/${UNIT} DESTINATION ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/lib/systemd/system)
endforeach()
# Neither the builder's mask nor the present shows.
execute_process(COMMAND chmod -R u=rwX,go=rX ${CPACK_TEMPORARY_INSTALL_DIRECTORY} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} -exec touch -h -d @$ENV{SOURCE_DATE_EPOCH} {} +
                COMMAND_ERROR_IS_FATAL ANY)
