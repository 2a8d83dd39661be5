# Helpers shared by tests/ and bench/.
find_package(GTest REQUIRED)
include(GoogleTest)

set(IM_TEST_SCRATCH ${CMAKE_BINARY_DIR}/test-scratch)

# Code that a test unloads with dlclose can no longer be told apart by the
# leak checker: what it allocated on any thread reads as leaked from an
# unknown module. Such tests run without the leak check; the same code is
# leak-checked by the suites that link it directly.
set(IM_NO_LEAK_CHECK_ASAN_OPTIONS "ASAN_OPTIONS=detect_leaks=0:abort_on_error=1")

# A runtime folder as XDG wants it: only its owner may enter.
function(im_make_runtime_dir dir)
  file(MAKE_DIRECTORY ${dir})
  file(CHMOD ${dir} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()

# im_add_test(<name> SOURCES ... LIBS ... [QT] [NO_LEAK_CHECK])
# One GoogleTest binary; every test runs with its own data folders so that
# no test reads or writes the developer's home.
function(im_add_test name)
  cmake_parse_arguments(ARG "QT;NO_LEAK_CHECK" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock GTest::gtest)
  if(NOT ARG_QT)
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  set(scratch ${IM_TEST_SCRATCH}/${name})
  set(env
    "IM_COMMON_DOCS_DIR=${scratch}/docs"
    "XDG_CONFIG_HOME=${scratch}/config"
    "XDG_RUNTIME_DIR=${scratch}/run"
    "QT_QPA_PLATFORM=offscreen"
    "IM_TEST_DATA_DIR=${CMAKE_SOURCE_DIR}/tests/data"
    # Third-party leaks only (see the file); ours are never suppressed.
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")
  if(ARG_NO_LEAK_CHECK)
    list(APPEND env "${IM_NO_LEAK_CHECK_ASAN_OPTIONS}")
  endif()
  im_make_runtime_dir(${scratch}/run)
  # gtest_discover_tests cannot pass a list-valued ENVIRONMENT property, so
  # every run (discovery included) goes through env(1) instead, and through a
  # wrapper that gives each test process its own temporary folder.
  set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR
    "env;${env};${CMAKE_SOURCE_DIR}/cmake/isolated-test")
  gtest_discover_tests(${name}
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 300
    DISCOVERY_MODE PRE_TEST)
endfunction()

# im_add_bench(<name> SOURCES ... LIBS ...)
# `make bench` runs every registered binary and keeps its JSON results.
function(im_add_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} benchmark::benchmark benchmark::benchmark_main)
  set_property(GLOBAL APPEND PROPERTY IM_BENCHES ${name})
endfunction()
