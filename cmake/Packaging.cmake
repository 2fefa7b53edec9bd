# Installation and packages: a .deb with the window, the command line, a desktop entry, an icon
# and AppStream metadata on Linux; a zip of torquil-cli.exe for Windows (the mingw build).
include(GNUInstallDirs)

# The Windows zip holds the .exe at its top, beside readme.txt.
if(WIN32)
  set(torquil_bindir .)
else()
  set(torquil_bindir ${CMAKE_INSTALL_BINDIR})
endif()
install(TARGETS torquil-cli RUNTIME DESTINATION ${torquil_bindir})
if(TORQUIL_BUILD_GUI)
  install(TARGETS torquil RUNTIME DESTINATION ${torquil_bindir})
endif()

set(CPACK_PACKAGE_NAME torquil)
set(CPACK_PACKAGE_VENDOR "Torquil")
set(CPACK_PACKAGE_CONTACT "Torquil developers <torquil@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Editor of the car graphics and car data of the game's style files")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_README ${PROJECT_SOURCE_DIR}/README.md)
set(CPACK_STRIP_FILES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME torquil-cli-${PROJECT_VERSION}-windows-x86_64)
  set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/readme.txt DESTINATION .)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION games)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
      "Editor of the car graphics and car data of the game's style files\n"
      "Torquil edits the car sprites, car data, car names and sound banks of the game's\n"
      "style files (.G24/.GRY) in a window; torquil-cli does the same from scripts.")
  set(desktop ${PROJECT_SOURCE_DIR}/packaging/linux)
  install(FILES ${desktop}/torquil.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${desktop}/torquil.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  configure_file(${desktop}/org.torquil.torquil.metainfo.xml.in
                 ${PROJECT_BINARY_DIR}/org.torquil.torquil.metainfo.xml @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/org.torquil.torquil.metainfo.xml
          DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/readme.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/torquil)
endif()

include(CPack)
