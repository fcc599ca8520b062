# Installing and the Debian package: both programs in bin/ with their manual pages, the desktop
# entry, its icon and its AppStream metadata, the shell completion of tarnwick-cli, and the
# copyright and changelog that every Debian package carries.
include(GNUInstallDirs)

set(TARNWICK_MAINTAINER "Tarnwick Developers <tarnwick@users.noreply.github.com>"
    CACHE STRING "Name and mail address of whoever builds the Debian package, as its Maintainer field")
set(TARNWICK_HOMEPAGE "https://github.com/tarnwick/tarnwick")

# Every folder the package makes is 0755 whatever the builder's umask, as Debian expects.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The changelog dates the release: the manual pages take their date from it, so that two builds
# of one version make the same files. Its version must be the project's.
configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in ${CMAKE_BINARY_DIR}/packaging/changelog @ONLY)
file(STRINGS ${CMAKE_BINARY_DIR}/packaging/changelog changelogHead LIMIT_COUNT 1)
if(NOT changelogHead MATCHES "^tarnwick \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "packaging/changelog.in starts with \"${changelogHead}\": its newest entry "
                      "must be for version ${PROJECT_VERSION}.")
endif()
file(STRINGS ${CMAKE_BINARY_DIR}/packaging/changelog changelogDate REGEX "^ -- " LIMIT_COUNT 1)
string(REGEX REPLACE "^ -- .*>  " "" changelogDate "${changelogDate}")
execute_process(COMMAND date -u -d "${changelogDate}" +%s OUTPUT_VARIABLE TARNWICK_RELEASE_TIMESTAMP
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
# gzip -n leaves out the name and time of the file, so the compressed bytes depend on the text alone.
execute_process(COMMAND gzip -9nc ${CMAKE_BINARY_DIR}/packaging/changelog
                OUTPUT_FILE ${CMAKE_BINARY_DIR}/packaging/changelog.gz COMMAND_ERROR_IS_FATAL ANY)

install(TARGETS tarnwick tarnwick-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
include(${CMAKE_CURRENT_LIST_DIR}/man_pages.cmake)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/tarnwick.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/tarnwick.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/io.github.tarnwick.Tarnwick.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/tarnwick-cli.bash-completion
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tarnwick-cli)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright ${CMAKE_BINARY_DIR}/packaging/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnwick)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnwick)
set(CPACK_PACKAGE_VENDOR "The Tarnwick developers")
set(CPACK_PACKAGE_CONTACT "${TARNWICK_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TARNWICK_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${TARNWICK_HOMEPAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "take the models of installed games into 3D software")
# CPack puts the summary first and indents these lines as the control file wants.
set(CPACK_PACKAGE_DESCRIPTION
    "Tarnwick finds the games installed on the computer, also those run through\n"
    "Wine or Proton, lists the actors each game defines, previews them in 3D and\n"
    "writes an actor as an FBX or glTF binary file, with its bones, skins, UV sets\n"
    "and textures, for ordinary 3D software to open.\n"
    "\n"
    "It comes as a desktop program, tarnwick, and a command-line front end,\n"
    "tarnwick-cli, which also converts many actors at once.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The dependencies are the Debian packages of the libraries the programs link, as dpkg-shlibdeps
# finds them; Mesa's drivers are what the preview draws with where no GPU driver is installed.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libgl1-mesa-dri")
include(CPack)
