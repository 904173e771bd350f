# What every target of this project is compiled with; linked as `orlo_compiler`.

# Off by default: a newer compiler may warn of more than the one this was written with.
option(ORLO_WERROR "Treat the compiler's warnings as errors" OFF)

add_library(orlo_compiler INTERFACE)

target_compile_options(orlo_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wunused -Wnull-dereference -Wformat=2 $<$<BOOL:${ORLO_WERROR}>:-Werror>
  # Log lines name the file below the project's root, not where it was built.
  "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")

target_compile_definitions(orlo_compiler INTERFACE
  # The log filter works by source file, in release builds too.
  QT_MESSAGELOGCONTEXT
  QT_NO_CAST_FROM_ASCII
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)

if(ORLO_SANITIZE)
  target_compile_options(orlo_compiler INTERFACE
    "-fsanitize=${ORLO_SANITIZE}" -fno-omit-frame-pointer -fno-sanitize-recover=all
    # Qt compares emptied lists by memcmp on a null pointer of length 0.
    -fno-sanitize=nonnull-attribute
    # The sanitizers' own code sets these warnings off where there is nothing to warn of.
    -Wno-null-dereference $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
    # What libFuzzer sees of the paths that an input takes.
    $<$<BOOL:${ORLO_FUZZ}>:-fsanitize=fuzzer-no-link>)
  target_link_options(orlo_compiler INTERFACE "-fsanitize=${ORLO_SANITIZE}")
endif()

find_program(ORLO_CCACHE ccache)
if(ORLO_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ORLO_CCACHE}")
endif()
