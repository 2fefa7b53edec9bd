include(${CMAKE_CURRENT_LIST_DIR}/header_only.cmake)
set(TORQUIL_NLOHMANN_INCLUDE /usr/include/nlohmann CACHE PATH "nlohmann-json's header folder on the build machine")
torquil_header_only(nlohmann_json::nlohmann_json ${TORQUIL_NLOHMANN_INCLUDE})
set(nlohmann_json_FOUND TRUE)
