# Where an installed instrument lies, and all that is installed beside the program itself.

set(ORLO_APP_ID com.brevick.tuningorlo) # of the desktop entry, the icons, the metainfo and the bundle
# `.example` is nobody's. Whoever publishes the program gives the true address.
set(ORLO_WEB_ADDRESS "https://brevick.example/tuning-orlo" CACHE STRING
  "The program's web page; its folder screenshots holds the pictures of docs")
option(ORLO_APP_BUNDLE "Install as an application bundle of macOS" "${APPLE}")

# The program looks for its resources beside its real path, so a link may stand anywhere.
if(ORLO_APP_BUNDLE)
  set(ORLO_BUNDLE_DIR "Brevick Tuning Orlo.app/Contents")
  set(ORLO_PROGRAM_DIR "${ORLO_BUNDLE_DIR}/MacOS")
  set(ORLO_DOC_DIR "${ORLO_BUNDLE_DIR}/Resources")
else()
  set(ORLO_PROGRAM_DIR lib/brevick-tuning-orlo)
  set(ORLO_DOC_DIR "${CMAKE_INSTALL_DATADIR}/doc/brevick-tuning-orlo")
endif()

install(FILES LICENSE CHANGELOG.md DESTINATION "${ORLO_DOC_DIR}")
if(LIBPD_LICENSE)
  install(FILES "${LIBPD_LICENSE}" DESTINATION "${ORLO_DOC_DIR}" RENAME LICENSE-libpd.txt)
endif()

set(packaging "${PROJECT_SOURCE_DIR}/packaging")
set(configured "${PROJECT_BINARY_DIR}/packaging")
set(icons "${PROJECT_SOURCE_DIR}/resources/icons")
configure_file("${packaging}/desktop-entry.in" "${configured}/${ORLO_APP_ID}.desktop" @ONLY)
configure_file("${packaging}/metainfo.xml.in" "${configured}/${ORLO_APP_ID}.metainfo.xml" @ONLY)
configure_file("${packaging}/macos/Info.plist.in" "${configured}/Info.plist" @ONLY)

if(ORLO_APP_BUNDLE)
  install(FILES "${configured}/Info.plist" DESTINATION "${ORLO_BUNDLE_DIR}")
  install(FILES "${icons}/app.icns" DESTINATION "${ORLO_BUNDLE_DIR}/Resources")
  return()
endif()

install(FILES "${configured}/${ORLO_APP_ID}.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${configured}/${ORLO_APP_ID}.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES "${packaging}/brevick-tuning-orlo.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
set(hicolor "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
foreach(size 16 24 32 48 64 128 256 512)
  install(FILES "${icons}/app-${size}.png" DESTINATION "${hicolor}/${size}x${size}/apps" RENAME "${ORLO_APP_ID}.png")
endforeach()
install(FILES "${icons}/app.svg" DESTINATION "${hicolor}/scalable/apps" RENAME "${ORLO_APP_ID}.svg")

# A relative link, so that the tree can be moved as a whole.
file(RELATIVE_PATH link_target "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${ORLO_PROGRAM_DIR}/brevick-tuning-orlo")
file(CREATE_LINK "${link_target}" "${configured}/brevick-tuning-orlo" SYMBOLIC)
install(FILES "${configured}/brevick-tuning-orlo" DESTINATION "${CMAKE_INSTALL_BINDIR}")
