# What answers the platform's calls where the platform is not: host descriptions, played back.

set(REPLAY ${CMAKE_CURRENT_LIST_DIR})

set(BUILT_IN_HOST ${PROJECT_SOURCE_DIR}/hosts/rill.json)
set(BUILT_IN_SOURCE ${CMAKE_BINARY_DIR}/BuiltInHost.cpp)
add_custom_command(
    OUTPUT ${BUILT_IN_SOURCE}
    COMMAND ${CMAKE_COMMAND} -DHOST=${BUILT_IN_HOST} -DOUT=${BUILT_IN_SOURCE} -P ${REPLAY}/EmbedHost.cmake
    DEPENDS ${BUILT_IN_HOST} ${REPLAY}/EmbedHost.cmake
    COMMENT "Embedding the built-in host" VERBATIM)

# How Java chooses the host is a part of the library.
file(GLOB REPLAY_SOURCES CONFIGURE_DEPENDS ${REPLAY}/*.cpp)
list(REMOVE_ITEM REPLAY_SOURCES ${REPLAY}/ReplayHost.cpp)

add_library(tarn_replay STATIC ${REPLAY_SOURCES} ${BUILT_IN_SOURCE})
target_link_libraries(tarn_replay PUBLIC tarn_description ${CMAKE_DL_LIBS})
