# The Debian package, for builds whose updates come with the system's packages: script/package, or cpack in the folder of
# the preset "package". Included last, since it works over what the install rules before it have put there.
if(NOT QUARRY_UPDATES_FROM_SYSTEM)
  return()
endif()

set(QUARRY_PACKAGE_REVISION 1 CACHE STRING "What follows the version of QuarrySpotter in that of the package")
set(QUARRY_PACKAGE_MAINTAINER "The QuarrySpotter authors <quarryspotter@packages.example>" CACHE STRING
  "Who answers for the package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quarryspotter)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${QUARRY_PACKAGE_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Whatever the builder's umask says.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${QUARRY_PACKAGE_REVISION})
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "watcher of web searches")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"QuarrySpotter repeats saved web searches on several search services and
shows what was not there before: each result once, unread until it has been
seen, with ratings, hidden results and a blacklist for what is never wanted.

The package has the main application, a command line, an agent for the
status bar that keeps the schedule, and a gateway that answers searches from
a folder of documents.")

# dpkg-shlibdeps sees what is linked. Beside that: without certificates no service is reached over HTTPS; xdg-open shows
# results, the session bus carries notifications and keeps programs to one a user, and Qt has its own texts and the
# folder of icons from elsewhere.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ca-certificates, hicolor-icon-theme")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "default-dbus-session-bus | dbus-session-bus, qt6-translations-l10n, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, notification-daemon")

# What Debian wants in the folder of the package's documents, and packed.
set(documents share/doc/${CPACK_PACKAGE_NAME})
string(TIMESTAMP QUARRY_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(resources/debian/changelog.in ${CMAKE_BINARY_DIR}/changelog.Debian @ONLY)
install(FILES resources/debian/copyright ${CMAKE_BINARY_DIR}/changelog.Debian DESTINATION ${documents})
install(FILES CHANGELOG.md DESTINATION ${documents} RENAME changelog)
install(CODE "
  set(share \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share\")
  file(GLOB packed \"\${share}/man/man1/*.1\" \"\${share}/doc/${CPACK_PACKAGE_NAME}/changelog*\")
  list(FILTER packed EXCLUDE REGEX \"\\\\.gz\$\")
  execute_process(COMMAND gzip -9nf \${packed} COMMAND_ERROR_IS_FATAL ANY)")

include(CPack)
