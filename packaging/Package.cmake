# Read by CPack when it makes a package: the commit is known by then, and only then.
if(EXISTS ${CPACK_TARN_COMMIT_FILE})
    file(READ ${CPACK_TARN_COMMIT_FILE} COMMIT)
    if(COMMIT)
        string(APPEND CPACK_PACKAGE_DESCRIPTION "\nBuilt from commit ${COMMIT}.\n")
    endif()
endif()
