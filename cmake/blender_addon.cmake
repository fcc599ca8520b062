# The Blender add-on: installed where Debian's Blender looks for system add-ons, and zipped in the
# build folder for Blender's "Install add-on" in any other Blender.
include(GNUInstallDirs)

set(TARNWICK_BLENDER_ADDON_FILES
    tarnwick_import/__init__.py
    tarnwick_import/actor_list.py
    tarnwick_import/cli.py
    tarnwick_import/operator.py
    tarnwick_import/preferences.py
    tarnwick_import/scene_import.py)

list(TRANSFORM TARNWICK_BLENDER_ADDON_FILES PREPEND ${PROJECT_SOURCE_DIR}/blender/ OUTPUT_VARIABLE addonSources)
install(FILES ${addonSources} DESTINATION ${CMAKE_INSTALL_DATADIR}/blender/scripts/addons/tarnwick_import)

# The zip holds the package folder itself, as Blender's installer expects.
set(TARNWICK_BLENDER_ADDON_ZIP ${CMAKE_BINARY_DIR}/tarnwick_import.zip)
add_custom_command(OUTPUT ${TARNWICK_BLENDER_ADDON_ZIP}
                   COMMAND ${CMAKE_COMMAND} -E tar cf ${TARNWICK_BLENDER_ADDON_ZIP} --format=zip ${TARNWICK_BLENDER_ADDON_FILES}
                   WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/blender
                   DEPENDS ${addonSources}
                   COMMENT "Zipping the Blender add-on")
add_custom_target(blender_addon_zip ALL DEPENDS ${TARNWICK_BLENDER_ADDON_ZIP})

# The package works without Blender; with it, the add-on is there.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS blender)
