# skyvane_test(NAME name SOURCES ... LIBS ...): one GoogleTest executable registered with ctest.
# Tests find the real captures through SKYVANE_SHARED_DIR and skip when it is absent.
set(SKYVANE_SHARED_DIR "${CMAKE_SOURCE_DIR}/../shared" CACHE PATH "Shared folder with captures and docs")
set(SKYVANE_TEST_ENVIRONMENT "QT_QPA_PLATFORM=offscreen;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-home/config;XDG_DATA_HOME=${CMAKE_BINARY_DIR}/test-home/data")
if(SKYVANE_SANITIZE)
  list(APPEND SKYVANE_TEST_ENVIRONMENT "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/lsan.supp")
endif()
function(skyvane_test)
  cmake_parse_arguments(T "" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  skyvane_warnings(${T_NAME})
  target_link_libraries(${T_NAME} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main)
  target_compile_definitions(${T_NAME} PRIVATE
    SKYVANE_SHARED_DIR="${SKYVANE_SHARED_DIR}"
    SKYVANE_BINARY_DIR="${CMAKE_BINARY_DIR}")
  # The environment goes through `cmake -E env`: as an ENVIRONMENT property the discovered tests
  # would split the list and keep only its first variable.
  set_property(TARGET ${T_NAME} PROPERTY CROSSCOMPILING_EMULATOR ${CMAKE_COMMAND} -E env ${SKYVANE_TEST_ENVIRONMENT})
  gtest_discover_tests(${T_NAME} DISCOVERY_TIMEOUT 60)
endfunction()
