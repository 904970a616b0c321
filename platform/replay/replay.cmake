# What answers the platform's calls where the platform is not: host descriptions, played back. Part of tarn_code.

set(REPLAY ${CMAKE_CURRENT_LIST_DIR})

find_path(NLOHMANN_JSON nlohmann/json.hpp PATHS /usr/include REQUIRED NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
# Header-only, so a cross compiler may use the build machine's, but must not see what lies around it.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK ${NLOHMANN_JSON}/nlohmann ${CMAKE_BINARY_DIR}/include/nlohmann SYMBOLIC)

set(BUILT_IN_HOST ${PROJECT_SOURCE_DIR}/hosts/rill.json)
set(BUILT_IN_SOURCE ${CMAKE_BINARY_DIR}/BuiltInHost.cpp)
add_custom_command(
    OUTPUT ${BUILT_IN_SOURCE}
    COMMAND ${CMAKE_COMMAND} -DHOST=${BUILT_IN_HOST} -DOUT=${BUILT_IN_SOURCE} -P ${REPLAY}/EmbedHost.cmake
    DEPENDS ${BUILT_IN_HOST} ${REPLAY}/EmbedHost.cmake
    COMMENT "Embedding the built-in host" VERBATIM)

file(GLOB REPLAY_SOURCES CONFIGURE_DEPENDS ${REPLAY}/*.cpp)
target_sources(tarn_code PRIVATE ${REPLAY_SOURCES} ${BUILT_IN_SOURCE})
target_include_directories(tarn_code SYSTEM PUBLIC ${REPLAY}/include PRIVATE ${CMAKE_BINARY_DIR}/include)
target_link_libraries(tarn_code PUBLIC ${CMAKE_DL_LIBS})
