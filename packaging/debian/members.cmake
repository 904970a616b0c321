# Packs what CPack has made of a package once more: it gives its three members the modes of the builder's mask.
foreach(PACKAGE ${CPACK_PACKAGE_FILES})
    set(MEMBERS ${CPACK_TEMPORARY_DIRECTORY}/members)
    file(MAKE_DIRECTORY ${MEMBERS})
    execute_process(COMMAND ar x ${PACKAGE} WORKING_DIRECTORY ${MEMBERS} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${PACKAGE})
    execute_process(COMMAND ar qcSD ${PACKAGE} debian-binary control.tar.gz data.tar.gz WORKING_DIRECTORY ${MEMBERS}
                    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
