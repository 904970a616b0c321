# Read by CPack when it makes a package: what it is built from is known by then, and only then.
file(STRINGS ${CPACK_TARN_VERSION_FILE} TARN_VERSION LIMIT_COUNT 1)
string(APPEND CPACK_PACKAGE_DESCRIPTION "\nThis is tarnsolaris ${TARN_VERSION}.\n")

# The time of all that is packed, unless it is told: that of the newest release, as Debian's own tools have it.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md RELEASE REGEX "^## .* - [0-9-]+$" LIMIT_COUNT 1)
    string(REGEX MATCH "[0-9-]+$" DATE "${RELEASE}")
    execute_process(COMMAND date -u -d ${DATE} +%s OUTPUT_VARIABLE EPOCH OUTPUT_STRIP_TRAILING_WHITESPACE
                    COMMAND_ERROR_IS_FATAL ANY)
    set(ENV{SOURCE_DATE_EPOCH} ${EPOCH})
endif()
