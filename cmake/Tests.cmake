# kelm_gtest(NAME name SOURCES files... LIBS libraries... [BOX]): one GoogleTest program, each case its own
# CTest test. With BOX every case is started in a virtual box of its own (box/box), so that it may touch the
# daemon's fixed paths; a host that cannot make one reports those cases as skipped, with the reason.
include(GoogleTest)
find_package(GTest REQUIRED)

function(kelm_gtest)
  cmake_parse_arguments(T "BOX" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  target_link_libraries(${T_NAME} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main kelm_warnings)
  target_include_directories(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(${T_NAME} PROPERTIES ENABLE_EXPORTS ON)
  set(labels pure)
  if(T_BOX)
    set(labels box)
    set_target_properties(${T_NAME} PROPERTIES CROSSCOMPILING_EMULATOR
                                               "${PROJECT_SOURCE_DIR}/box/test-in-box")
  endif()
  gtest_discover_tests(${T_NAME} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${labels} TIMEOUT 300)
endfunction()
