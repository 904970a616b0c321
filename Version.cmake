# Writes OUT from TEMPLATE, whose @TARN_VERSION@ stands for VERSION and, where the tree SOURCE is the top of a git tree,
# "+" and the commit it is of, with "-dirty" when it holds more than that. An OUT that says so already is left alone.
cmake_minimum_required(VERSION 3.25)

set(TARN_VERSION ${VERSION})
if(EXISTS ${SOURCE}/.git)
    execute_process(COMMAND git describe --always --dirty --exclude=* --abbrev=12 WORKING_DIRECTORY ${SOURCE}
                    OUTPUT_VARIABLE COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(COMMIT)
        string(APPEND TARN_VERSION +${COMMIT})
    endif()
endif()
configure_file(${TEMPLATE} ${OUT} @ONLY)
