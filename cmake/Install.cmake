# What stands beside the command and its resources when it is installed, and the Debian packages.

set(packaging ${PROJECT_SOURCE_DIR}/packaging)
install(FILES ${packaging}/completions/lumenquest.bash RENAME lumenquest
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT app)
install(FILES ${packaging}/completions/lumenquest.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT app)
install(FILES ${packaging}/lumenquest.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT app)
install(FILES ${PROJECT_SOURCE_DIR}/resources/art/appIcon.svg RENAME lumenquest.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT app)
configure_file(cmake/InstallByPrefix.cmake.in InstallByPrefix.cmake @ONLY)
install(SCRIPT ${PROJECT_BINARY_DIR}/InstallByPrefix.cmake COMPONENT app)

# Packages: `cpack -G DEB` in the build folder, or script/package, which does all that it needs.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumenquest)
set(CPACK_PACKAGE_VENDOR "The Lumenquest developers")
set(CPACK_PACKAGE_CONTACT "The Lumenquest developers <maintainers@lumenquest.example>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/PrepareDebian.cmake)

set(CPACK_COMPONENTS_ALL app ephemeris)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# Each package has a summary of its own, the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

set(CPACK_DEBIAN_APP_PACKAGE_NAME lumenquest)
set(CPACK_DEBIAN_APP_PACKAGE_SECTION science)
set(CPACK_COMPONENT_APP_DESCRIPTION
"light, Moon and Milky Way for photographers
For a place and a moment: the light now and the next change of light,
golden and blue hour, twilights, Sun and Moon, and when the centre of the
galaxy stands in a dark sky. As a table, as JSON and as home-screen
widgets, which are drawn to pictures or shown in a browser. Keeps plans,
too.
.
The sky is computed and places are found on this machine, without a
network.")
set(CPACK_DEBIAN_APP_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_APP_PACKAGE_DEPENDS tzdata)
set(CPACK_DEBIAN_APP_PACKAGE_RECOMMENDS "fonts-inter, geoclue-2.0, xdg-utils")

set(CPACK_DEBIAN_EPHEMERIS_PACKAGE_NAME liblumenquest-ephemeris-dev)
set(CPACK_DEBIAN_EPHEMERIS_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_EPHEMERIS_DESCRIPTION
"astronomy engine for Sun, Moon and galactic centre
Positions, rises and sets, twilights, phases, apogees and perigees, after
published series. A static library with its headers and a CMake package, which
needs nothing but a C++20 compiler.")
configure_file(cmake/PrepareDebian.cmake.in PrepareDebian.cmake @ONLY)
include(CPack)
