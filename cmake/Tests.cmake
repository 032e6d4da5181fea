# kelm_gtest(NAME name SOURCES files... LIBS libraries... [BOX] [LABEL label] [ENVIRONMENT variable=value]): one
# GoogleTest program, each case its own CTest test. With BOX every case is started in its own virtual box
# (box/box), so that it may touch the daemon's fixed paths; a host that cannot make one reports those cases as skipped,
# with the reason. A cross-compiled program is started through the toolchain's emulator, in the box as well; as starting
# is most of what that takes, the cases that need no box are one test there.
include(GoogleTest)

# GoogleTest's header and the large ones of the library, compiled once for all programs: a third of what their files
# take to compile, which with sanitizers is minutes.
file(TOUCH ${CMAKE_BINARY_DIR}/precompiled.cpp)
add_library(precompiled OBJECT EXCLUDE_FROM_ALL ${CMAKE_BINARY_DIR}/precompiled.cpp)
target_link_libraries(precompiled PRIVATE GTest::gtest kelm_warnings)
target_precompile_headers(precompiled PRIVATE <gtest/gtest.h> <chrono> <filesystem> <fstream> <thread>)

# kelm_start_in_box(TARGET): CTest starts this program in a box, a foreign one through the emulator there.
function(kelm_start_in_box target)
  set(launcher "${PROJECT_SOURCE_DIR}/box/test-in-box")
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    list(APPEND launcher ${CMAKE_CROSSCOMPILING_EMULATOR} --)
  endif()
  set_target_properties(${target} PROPERTIES CROSSCOMPILING_EMULATOR "${launcher}")
endfunction()

function(kelm_gtest)
  cmake_parse_arguments(T "BOX" "NAME;LABEL;ENVIRONMENT" "SOURCES;LIBS" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  target_link_libraries(${T_NAME} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main kelm_warnings)
  target_include_directories(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(${T_NAME} PROPERTIES ENABLE_EXPORTS ON)
  target_precompile_headers(${T_NAME} REUSE_FROM precompiled)
  set(labels pure)
  if(T_BOX)
    set(labels box)
    kelm_start_in_box(${T_NAME})
  endif()
  if(T_LABEL)
    set(labels ${T_LABEL})
  endif()
  set(properties LABELS ${labels} TIMEOUT 300)
  if(T_ENVIRONMENT)
    list(APPEND properties ENVIRONMENT ${T_ENVIRONMENT})
  endif()
  if(CMAKE_CROSSCOMPILING_EMULATOR AND labels STREQUAL pure)
    add_test(NAME ${T_NAME} COMMAND ${T_NAME})
    set_tests_properties(${T_NAME} PROPERTIES ${properties} SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]")
  else()
    gtest_discover_tests(${T_NAME} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
  endif()
endfunction()

# kelm_program_folder(VARIABLE programs...): the folder from which tests start these programs by name. Of a
# cross-compiled build it holds scripts that run them through the toolchain's emulator.
function(kelm_program_folder variable)
  set(folder ${CMAKE_BINARY_DIR})
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    string(APPEND folder /emulated)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
    foreach(program IN LISTS ARGN)
      file(
        GENERATE
        OUTPUT ${folder}/${program}
        CONTENT "#!/bin/sh\nexec '${emulator}' '$<TARGET_FILE:${program}>' \"$@\"\n"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    endforeach()
  endif()
  set(${variable} ${folder} PARENT_SCOPE)
endfunction()
