# SPDX-License-Identifier: MIT
# Helpers that turn a folder into a target, so that the include picture is enforced by linking.

# speckmend_room(name SOURCES file... USES target...)
# A static library speckmend_<name> whose headers are seen by those that link it, and by nobody else.
function(speckmend_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(speckmend_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(speckmend_${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(speckmend_${name} PUBLIC ${ROOM_USES})
endfunction()

# speckmend_test(name USES target... [TIMEOUT seconds] [LABELS label...])
# A Qt Test program tst_<name>.cpp of this folder, on the simulated camera library, without a display.
function(speckmend_test name)
  cmake_parse_arguments(TEST "" "TIMEOUT" "USES;LABELS" ${ARGN})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 120)
  endif()
  get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  add_executable(tst_${name} tst_${name}.cpp)
  target_link_libraries(tst_${name} PRIVATE ${TEST_USES} kelvosim Qt5::Test)
  target_include_directories(tst_${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  set_target_properties(tst_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  add_test(NAME ${folder}/${name} COMMAND tst_${name})
  speckmend_test_environment(${folder}/${name})
  speckmend_test_timeout(${folder}/${name} ${TEST_TIMEOUT})
  set_tests_properties(${folder}/${name} PROPERTIES LABELS "${folder};${TEST_LABELS}")
endfunction()

# speckmend_test_timeout(test seconds): as long as a test may take on this machine; longer under an emulator.
set(SPECKMEND_TIMEOUT_FACTOR 1 CACHE STRING "How many times as long as usual a test may take")
function(speckmend_test_timeout test seconds)
  math(EXPR seconds "${seconds} * ${SPECKMEND_TIMEOUT_FACTOR}")
  set_tests_properties(${test} PROPERTIES TIMEOUT ${seconds})
endfunction()

# speckmend_test_environment(test [KEY=value...]): no display, settings and files of the test's own,
# the sanitizers' suppressions.
function(speckmend_test_environment test)
  string(REPLACE "/" "_" own "${test}")
  set(home "${CMAKE_BINARY_DIR}/tests/home/${own}")
  file(MAKE_DIRECTORY "${home}")
  # An event thread that was cancelled leaves marks on its stack, which the sanitizer's own clean-up of signal
  # stacks takes for an overflow.
  set(environment
    "ASAN_OPTIONS=use_sigaltstack=0"
    "QT_QPA_PLATFORM=offscreen" "HOME=${home}" "XDG_CONFIG_HOME=${home}/config" "XDG_DATA_HOME=${home}/data"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
    "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/tsan.supp:halt_on_error=0:exitcode=66"
    "SPECKMEND_SOURCE_DIR=${CMAKE_SOURCE_DIR}")
  if(SPECKMEND_SANITIZE STREQUAL "thread")
    list(APPEND environment "LD_PRELOAD=$<TARGET_FILE:tsan_qt_order>")
  endif()
  if(CMAKE_CROSSCOMPILING)
    math(EXPR function_timeout "300000 * ${SPECKMEND_TIMEOUT_FACTOR}") # milliseconds
    list(APPEND environment "SPECKMEND_EMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}" ${SPECKMEND_EMULATOR_ENVIRONMENT}
      "QTEST_FUNCTION_TIMEOUT=${function_timeout}")
  endif()
  set_tests_properties(${test} PROPERTIES ENVIRONMENT "${environment};${ARGN}")
endfunction()

# speckmend_test_on_x11(test [WINDOW_MANAGER] COMMAND program argument...)
# Runs a program on the real platform plug-in, on a virtual display of its own; behind a window manager, which
# frames, places and activates windows as it sees fit, when asked to.
function(speckmend_test_on_x11 test)
  cmake_parse_arguments(TEST "WINDOW_MANAGER" "" "COMMAND" ${ARGN})
  list(POP_FRONT TEST_COMMAND program)
  find_program(XVFB_RUN xvfb-run)
  if(NOT XVFB_RUN)
    message(WARNING "xvfb-run is missing: ${test} is left out")
    return()
  endif()
  set(wrapper "")
  if(TEST_WINDOW_MANAGER)
    find_program(OPENBOX openbox)
    if(NOT OPENBOX)
      message(WARNING "openbox is missing: ${test} is left out")
      return()
    endif()
    set(wrapper "${CMAKE_SOURCE_DIR}/cmake/under-window-manager.sh" "${OPENBOX}")
  endif()
  if(SPECKMEND_SANITIZE STREQUAL "thread")
    return() # the X server and its client library would be preloaded and watched as well
  endif()
  # A server that starts anew whenever its last client is gone loses one that is just coming.
  add_test(NAME ${test} COMMAND ${XVFB_RUN} -a -s "-screen 0 1600x1000x24 -noreset"
    ${wrapper} ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${program}> ${TEST_COMMAND})
  speckmend_test_environment(${test})
  # The platform plug-in is unloaded before the leak check, so what it leaks has no name that a suppression
  # could give. Leaks of ours show without a display, where the same programs and the same way run.
  set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=xcb" "ASAN_OPTIONS=use_sigaltstack=0:detect_leaks=0")
  # Two servers that start at once may pick the same display number.
  speckmend_test_timeout(${test} 300)
  set_tests_properties(${test} PROPERTIES LABELS "x11" RESOURCE_LOCK xvfb)
endfunction()
