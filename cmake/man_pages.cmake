# The manual pages, made by help2man from the programs' own --help and --version, so that a page
# can't fall behind its program. help2man runs the programs themselves, which a cross build can't
# do, and a package without pages is what this is here to prevent: both stop the configure.
if(CMAKE_CROSSCOMPILING)
  message(FATAL_ERROR "The manual pages are made by running tarnwick --help and tarnwick-cli --help, "
                      "which a cross build can't do: build natively for the target.")
endif()
find_program(TARNWICK_HELP2MAN help2man)
if(NOT TARNWICK_HELP2MAN)
  message(FATAL_ERROR "help2man is needed to make the manual pages from the programs' --help "
                      "(Debian package help2man; scripts/setup installs it).")
endif()
find_program(TARNWICK_GZIP gzip REQUIRED)

set(TARNWICK_MAN_DIR ${CMAKE_BINARY_DIR}/man)

# The page of `target` in section 1 as <target>.1.gz, dated by the release (SOURCE_DATE_EPOCH) rather
# than by the build, with the extra sections of packaging/man/<target>.h2m.
function(tarnwick_man_page target summary)
  set(page ${TARNWICK_MAN_DIR}/${target}.1)
  set(extra ${PROJECT_SOURCE_DIR}/packaging/man/${target}.h2m)
  add_custom_command(
    OUTPUT ${page}.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${TARNWICK_MAN_DIR}
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C SOURCE_DATE_EPOCH=${TARNWICK_RELEASE_TIMESTAMP}
            ${TARNWICK_HELP2MAN} --no-info --section=1 --name=${summary} --include=${extra}
            --output=${page} $<TARGET_FILE:${target}>
    COMMAND ${TARNWICK_GZIP} -9nf ${page}
    DEPENDS ${target} ${extra}
    COMMENT "Making the manual page of ${target}"
    VERBATIM)
  add_custom_target(${target}_man_page ALL DEPENDS ${page}.gz)
  install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()

tarnwick_man_page(tarnwick "take the actors of installed games into 3D software")
tarnwick_man_page(tarnwick-cli "convert the actors of installed games to FBX or glTF files")
