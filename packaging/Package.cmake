# Read by CPack when it makes a package: what it is built from is known by then, and only then.
file(STRINGS ${CPACK_TARN_VERSION_FILE} TARN_VERSION LIMIT_COUNT 1)
string(APPEND CPACK_PACKAGE_DESCRIPTION "\nThis is tarnsolaris ${TARN_VERSION}.\n")

# The time of all that is packed, unless it is told: that of the commit, without one that of the newest release. A virtual
# machine takes a jar of another time for another jar.
set(SOURCE ${CMAKE_CURRENT_LIST_DIR}/..)
set(EPOCH "$ENV{SOURCE_DATE_EPOCH}")
if(NOT EPOCH AND EXISTS ${SOURCE}/.git)
    execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY ${SOURCE}
                    OUTPUT_VARIABLE EPOCH OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT EPOCH)
    file(STRINGS ${SOURCE}/CHANGELOG.md RELEASE REGEX "^## .* - [0-9-]+$" LIMIT_COUNT 1)
    string(REGEX MATCH "[0-9-]+$" DATE "${RELEASE}")
    execute_process(COMMAND date -u -d ${DATE} +%s OUTPUT_VARIABLE EPOCH OUTPUT_STRIP_TRAILING_WHITESPACE
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
set(ENV{SOURCE_DATE_EPOCH} ${EPOCH})
