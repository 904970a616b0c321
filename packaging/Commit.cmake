# Writes to OUT which commit the tree SOURCE is of, "-dirty" when it holds more than that, and nothing when it is not the
# top of a git tree: cmake -DSOURCE=... -DOUT=... -P Commit.cmake. A file that says so already is left alone.
cmake_minimum_required(VERSION 3.25)

set(COMMIT "")
if(EXISTS ${SOURCE}/.git)
    execute_process(COMMAND git describe --always --dirty --exclude=* --abbrev=12 WORKING_DIRECTORY ${SOURCE}
                    OUTPUT_VARIABLE COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
file(CONFIGURE OUTPUT ${OUT} CONTENT "@COMMIT@" @ONLY)
