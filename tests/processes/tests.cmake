corvane_test(processes/tst_AIFramework LINK corvane::processes)
corvane_test(processes/tst_AIProcessDetector LINK corvane::processes)
corvane_test(processes/tst_ArgumentBlock LINK corvane::processes)
corvane_test(processes/tst_ArgumentCache THREADED LINK corvane::processes)
corvane_test(processes/tst_FootprintRanking LINK corvane::processes)
corvane_test(processes/tst_ProcessFiles LINK corvane::processes)
corvane_test(processes/tst_ProcessBridge SYSTEM linux SOURCES processes/ProcTree.cpp
             LINK corvane::processes)
corvane_test(processes/tst_ProcessSampler SYSTEM linux LINK corvane::processes)
corvane_test(processes/tst_Survey SYSTEM linux SOURCES processes/ProcTree.cpp
             LINK corvane::processes)
