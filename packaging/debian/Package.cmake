# The Debian package: cpack --config CPackConfig.cmake in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME starbloom)
set(CPACK_PACKAGE_VENDOR "Starbloom developers")
set(CPACK_PACKAGE_CONTACT "Starbloom developers <developers@starbloom.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL ${STARBLOOM_HOMEPAGE})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "fireworks to play, shape and export")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE none) # FinishPackage.cmake compresses.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Rockets rise, burst into a thousand sparks and scatter flickering sparkles;
fourteen sliders shape the show while it plays. One click exports a picture,
another records a movie.

The program starbloom-render makes the same show without a screen: pictures,
movies, seamless loops and clips with transparency.")

# What the programs and the modules that they load are linked with; the toolkit's own modules for X11, OpenGL, JPEG and
# printing come in the packages of its libraries.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded by name, so that the above does not see it; its first version with what the stores ask for.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libsqlite3-0 (>= 3.36)")
# Wayland, the toolkit's own texts in other languages than English, and a place for the icon.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, qt6-translations-l10n, hicolor-icon-theme")
# Text in Japanese.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "fonts-noto-cjk")

set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/PackageDate.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/FinishPackage.cmake)
set(CPACK_STARBLOOM_DEBIAN_FOLDER ${CMAKE_CURRENT_LIST_DIR})
include(CPack)
