# What a host looks like, as data and as JSON.

# Where nlohmann/json.hpp is: header-only, so a cross compiler may use the build machine's, but must not see what lies
# around it.
find_path(NLOHMANN_JSON nlohmann/json.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK ${NLOHMANN_JSON}/nlohmann ${CMAKE_BINARY_DIR}/include/nlohmann SYMBOLIC)

file(GLOB DESCRIPTION_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
add_library(tarn_description STATIC ${DESCRIPTION_SOURCES})
target_link_libraries(tarn_description PUBLIC tarn_platform)
target_include_directories(tarn_description SYSTEM PRIVATE ${CMAKE_BINARY_DIR}/include)
