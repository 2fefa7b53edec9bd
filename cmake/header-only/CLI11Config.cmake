include(${CMAKE_CURRENT_LIST_DIR}/header_only.cmake)
set(TORQUIL_CLI11_INCLUDE /usr/include/CLI CACHE PATH "CLI11's header folder on the build machine")
torquil_header_only(CLI11::CLI11 ${TORQUIL_CLI11_INCLUDE})
set(CLI11_FOUND TRUE)
