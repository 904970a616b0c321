# Read by CPack when it makes a package: what it is built from is known by then, and only then.
file(STRINGS ${CPACK_TARN_VERSION_FILE} TARN_VERSION LIMIT_COUNT 1)
string(APPEND CPACK_PACKAGE_DESCRIPTION "\nThis is tarnsolaris ${TARN_VERSION}.\n")
