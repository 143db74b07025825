# What the tests share, and the headers that most of their compile time goes into, compiled once.
add_library(corvane_test_support STATIC support/Machines.cpp support/MachineTree.cpp support/ProcessState.cpp)
target_include_directories(corvane_test_support PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(corvane_test_support PUBLIC corvane_flags Qt6::Test Qt6::Widgets Qt6::Svg)
target_precompile_headers(corvane_test_support PRIVATE <QSignalSpy> <QTest>)
set_source_files_properties(
  support/Machines.cpp PROPERTIES COMPILE_DEFINITIONS CORVANE_MACHINES="${CMAKE_CURRENT_SOURCE_DIR}/machines"
                                  SKIP_PRECOMPILE_HEADERS ON)
set_source_files_properties(support/ProgramRun.cpp PROPERTIES COMPILE_DEFINITIONS
                                                              CORVANE_PROGRAM="$<TARGET_FILE:corvane>")
if(NOT CORVANE_SYSTEM STREQUAL "mac")
  target_sources(
    corvane_test_support PRIVATE support/AccessibilityBus.cpp support/BusMonitor.cpp support/DrivenProgram.cpp
                                 support/FakePackageKit.cpp support/FakeTray.cpp support/HalfBus.cpp support/PrivateBus.cpp
                                 support/ProgramRun.cpp support/ProgramSession.cpp support/TrayTypes.cpp
                                 support/VirtualDisplay.cpp)
  target_link_libraries(corvane_test_support PUBLIC Qt6::DBus)
endif()
if(CORVANE_SYSTEM STREQUAL "simulated-mac")
  target_link_libraries(corvane_test_support PUBLIC corvane_simulated_mac)
endif()
if(CORVANE_SYSTEM STREQUAL "linux")
  target_sources(corvane_test_support PRIVATE support/AccessWatch_linux.cpp support/OwnMounts.cpp
                                              support/SystemCalls.cpp)

  # The linker puts FaultyCalls between our objects and the C library.
  add_library(corvane_faulty_calls INTERFACE)
  target_sources(corvane_faulty_calls INTERFACE ${CMAKE_CURRENT_SOURCE_DIR}/support/FaultyCalls_linux.cpp)
  foreach(call open openat read pread write fsync rename flock)
    target_link_options(corvane_faulty_calls INTERFACE -Wl,--wrap=${call})
  endforeach()
endif()

# corvane_program_tests(TARGET…): these tests start the program, which is built before them.
function(corvane_program_tests)
  foreach(test ${ARGN})
    if(TARGET ${test})
      add_dependencies(${test} corvane)
    endif()
  endforeach()
endfunction()
