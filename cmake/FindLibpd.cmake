# Finds libpd with its utilities: first what the user names in LIBPD_ROOT, then what the
# set-up script built into .deps, then pkg-config's. Gives the target Libpd::Libpd, and LIBPD_LICENSE
# where its licence lies beside it.
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(PC_LIBPD QUIET libpd)
endif()

set(_libpd_hints "$ENV{LIBPD_ROOT}" "${LIBPD_ROOT}" "${PROJECT_SOURCE_DIR}/.deps/libpd"
                 ${PC_LIBPD_INCLUDE_DIRS} ${PC_LIBPD_LIBRARY_DIRS})
find_path(LIBPD_INCLUDE_DIR z_libpd.h HINTS ${_libpd_hints}
          PATH_SUFFIXES include/libpd include libpd)
find_library(LIBPD_LIBRARY NAMES libpd.a pd HINTS ${_libpd_hints} PATH_SUFFIXES lib)
find_file(LIBPD_LICENSE LICENSE.txt HINTS ${_libpd_hints} NO_DEFAULT_PATH)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Libpd REQUIRED_VARS LIBPD_LIBRARY LIBPD_INCLUDE_DIR)

if(Libpd_FOUND AND NOT TARGET Libpd::Libpd)
  add_library(Libpd::Libpd UNKNOWN IMPORTED)
  set_target_properties(Libpd::Libpd PROPERTIES
    IMPORTED_LOCATION "${LIBPD_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${LIBPD_INCLUDE_DIR}")
  find_package(Threads REQUIRED)
  target_link_libraries(Libpd::Libpd INTERFACE Threads::Threads ${CMAKE_DL_LIBS} m)
endif()
mark_as_advanced(LIBPD_INCLUDE_DIR LIBPD_LIBRARY LIBPD_LICENSE)
