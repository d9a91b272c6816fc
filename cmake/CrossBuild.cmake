# What a cross build (cmake/toolchains/) needs beyond the toolchain: GoogleTest compiled for the
# target from Debian's sources, since the host's libraries are of the wrong CPU, and the golden
# tests' subprocess started through the emulator that runs the tests.

set(PC_GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest sources (Debian package googletest)")
if((NOT DEFINED PC_BUILD_TESTS OR PC_BUILD_TESTS) AND NOT TARGET GTest::gtest)
  if(NOT EXISTS ${PC_GTEST_SOURCE_DIR}/CMakeLists.txt)
    message(FATAL_ERROR "A cross build compiles GoogleTest from source: set PC_GTEST_SOURCE_DIR "
                        "(Debian: apt-get install googletest) or -DPC_BUILD_TESTS=OFF")
  endif()
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)  # the workbench tests link gmock
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  include(FetchContent)
  # OVERRIDE_FIND_PACKAGE: the tests' find_package(GTest) takes these targets (GTest::gtest,
  # GTest::gtest_main) instead of looking for an installed copy.
  FetchContent_Declare(GTest SOURCE_DIR ${PC_GTEST_SOURCE_DIR} OVERRIDE_FIND_PACKAGE)
  FetchContent_MakeAvailable(GTest)
endif()

# The golden tests start the built tool themselves. A kernel without binfmt_misc cannot execute an
# arm64 program, so they start it as CMAKE_CROSSCOMPILING_EMULATOR: its words, space-separated.
function(pc_cross_golden_emulator)
  if(TARGET test_golden AND CMAKE_CROSSCOMPILING_EMULATOR)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " words)
    target_compile_definitions(test_golden PRIVATE PC_TOOL_EMULATOR="${words}")
  endif()
  # Nor can a death test execute its own program again.
  if(TARGET test_base AND CMAKE_CROSSCOMPILING_EMULATOR)
    target_compile_definitions(test_base PRIVATE PC_CANNOT_REEXEC=1)
  endif()
endfunction()
cmake_language(DEFER CALL pc_cross_golden_emulator)
