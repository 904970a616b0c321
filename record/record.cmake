# tarn-record: writes a description of the host that it runs on.

file(GLOB RECORD_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
list(REMOVE_ITEM RECORD_SOURCES ${CMAKE_CURRENT_LIST_DIR}/main.cpp)
add_library(tarn_record_code STATIC ${RECORD_SOURCES})
target_link_libraries(tarn_record_code PUBLIC tarn_description tarn_common)

tarn_version_file(${CMAKE_CURRENT_LIST_DIR}/Version.h.in ${CMAKE_BINARY_DIR}/record/Version.h)
add_executable(tarn-record ${CMAKE_CURRENT_LIST_DIR}/main.cpp ${CMAKE_BINARY_DIR}/record/Version.h)
target_include_directories(tarn-record PRIVATE ${CMAKE_BINARY_DIR})
target_link_libraries(tarn-record PRIVATE tarn_record_code)
if(CMAKE_SYSTEM_NAME STREQUAL "SunOS" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # It goes alone to hosts that have no such C++ library.
    target_link_options(tarn-record PRIVATE -static-libstdc++ -static-libgcc)
endif()
