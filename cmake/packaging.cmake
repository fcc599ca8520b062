# Installing and the Debian package: both programs in bin/, the desktop entry and its icon in share/,
# so that the desktop's menu lists the program once the package is installed.
include(GNUInstallDirs)
install(TARGETS tarnwick tarnwick-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/packaging/tarnwick.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/tarnwick.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnwick)
set(CPACK_PACKAGE_VENDOR "The Tarnwick developers")
set(CPACK_PACKAGE_CONTACT "The Tarnwick developers <tarnwick@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Takes the actors of installed games into 3D software as FBX files")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# The dependencies are the Debian packages of the libraries the programs link, as dpkg-shlibdeps
# finds them; Mesa's drivers are what the preview draws with where no GPU driver is installed.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libgl1-mesa-dri")
include(CPack)
