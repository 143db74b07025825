corvane_test(processes/tst_AIFramework)
corvane_test(processes/tst_AIProcessDetector)
corvane_test(processes/tst_ArgumentBlock)
corvane_test(processes/tst_FactsCache THREADED)
corvane_test(processes/tst_CommandLines)
corvane_test(processes/tst_FootprintRanking)
corvane_test(processes/tst_ProcessFiles)
corvane_test(processes/tst_SecondRules)
corvane_test(processes/tst_WorkloadGroups)
corvane_test(processes/tst_LiveProcesses SYSTEM linux SOURCES processes/LiveProcess.cpp)
corvane_test(processes/tst_ProcessBridge SYSTEM linux SOURCES processes/ProcTree.cpp)
corvane_test(processes/tst_ProcessSampler SYSTEM linux)
corvane_test(processes/tst_ProcessStorm SYSTEM linux SOURCES processes/LiveProcess.cpp)
corvane_test(processes/tst_Surveyor SYSTEM linux THREADED SOURCES processes/ProcTree.cpp)
if(TARGET tst_CommandLines)
  target_compile_definitions(
    tst_CommandLines PRIVATE CORVANE_COMMAND_LINES="${CMAKE_CURRENT_LIST_DIR}/command_lines.tsv")
endif()

if(TARGET tst_SecondRules)
  target_compile_definitions(tst_SecondRules PRIVATE CORVANE_RUNNERS="${CMAKE_CURRENT_LIST_DIR}/runners.tsv"
                                                     CORVANE_NOT_AI="${CMAKE_CURRENT_LIST_DIR}/not_ai.tsv")
endif()

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
