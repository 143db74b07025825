corvane_test(processes/tst_AIFramework LINK corvane::processes)
corvane_test(processes/tst_AIProcessDetector LINK corvane::processes)
corvane_test(processes/tst_ArgumentBlock LINK corvane::processes)
corvane_test(processes/tst_ArgumentCache THREADED LINK corvane::processes)
corvane_test(processes/tst_CommandLines LINK corvane::processes)
if(TARGET tst_CommandLines)
  target_compile_definitions(
    tst_CommandLines PRIVATE CORVANE_COMMAND_LINES="${CMAKE_CURRENT_LIST_DIR}/command_lines.tsv")
endif()
corvane_test(processes/tst_FootprintRanking LINK corvane::processes)
corvane_test(processes/tst_ProcessFiles LINK corvane::processes)
corvane_test(processes/tst_LiveProcesses SYSTEM linux SOURCES processes/LiveProcess.cpp
             LINK corvane::processes)
corvane_test(processes/tst_ProcessBridge SYSTEM linux SOURCES processes/ProcTree.cpp
             LINK corvane::processes)
corvane_test(processes/tst_ProcessSampler SYSTEM linux LINK corvane::processes)
corvane_test(processes/tst_ProcessStorm SYSTEM linux SOURCES processes/LiveProcess.cpp
             LINK corvane::processes)
corvane_test(processes/tst_Survey SYSTEM linux THREADED SOURCES processes/ProcTree.cpp
             LINK corvane::processes corvane::jobs)

# Plain programs, without sanitizers: their memory is what they are asked to hold.
if(TARGET tst_LiveProcesses)
  add_executable(stand_in processes/stand_in.cpp)
  add_executable(fork_storm processes/fork_storm.cpp)
  foreach(test tst_LiveProcesses tst_ProcessStorm)
    add_dependencies(${test} stand_in fork_storm)
    target_compile_definitions(${test} PRIVATE STAND_IN="$<TARGET_FILE:stand_in>"
                                               FORK_STORM="$<TARGET_FILE:fork_storm>")
  endforeach()
endif()
