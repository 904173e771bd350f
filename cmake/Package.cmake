# What `cpack` makes of the install tree: a Debian package. scripts/package runs it.
if(ORLO_APP_BUNDLE)
  return() # macdeployqt puts Qt into the bundle, and makes the disk image
endif()

set(CPACK_PACKAGE_NAME brevick-tuning-orlo)
set(CPACK_PACKAGE_VENDOR "Brevick")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "desktop instrument for just intonation")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Brevick <orlo@brevick.example>" CACHE STRING "Of the Debian package, with an address")
set(CPACK_DEBIAN_PACKAGE_SECTION non-free/sound)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${ORLO_WEB_ADDRESS}")
# The libraries' packages are found from what the programs link.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "hicolor-icon-theme")
# PortAudio reaches PulseAudio and PipeWire through ALSA's plugins.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pipewire-alsa | libasound2-plugins")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "jackd2, fluidsynth")
file(READ "${PROJECT_SOURCE_DIR}/packaging/debian/description" CPACK_DEBIAN_PACKAGE_DESCRIPTION)
string(STRIP "${CPACK_DEBIAN_PACKAGE_DESCRIPTION}" CPACK_DEBIAN_PACKAGE_DESCRIPTION)

# Debian's own documents, and everything compressed as Debian wants it.
configure_file("${PROJECT_SOURCE_DIR}/packaging/debian/changelog.in"
  "${PROJECT_BINARY_DIR}/packaging/debian-changelog" @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/packaging/debian/FinishTree.cmake.in"
  "${PROJECT_BINARY_DIR}/packaging/FinishTree.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_BINARY_DIR}/packaging/FinishTree.cmake")
include(CPack)
