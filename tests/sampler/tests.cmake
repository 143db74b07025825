corvane_test(sampler/tst_AppSettings SYSTEM linux simulated-mac)
corvane_test(sampler/tst_HangingDisk SYSTEM linux THREADED LINK corvane_faulty_calls)
corvane_test(sampler/tst_FilesOfATick SYSTEM linux SOURCES support/SteppedClock.cpp LINK corvane_faulty_calls)
corvane_test(sampler/tst_SystemSampler THREADED)
corvane_test(sampler/tst_DamagedMachine SYSTEM linux THREADED LONG --one-by-one 1 TIMEOUT 900
             SOURCES support/SteppedClock.cpp LINK corvane_faulty_calls)
corvane_test(sampler/tst_SimulatedWeek SYSTEM linux simulated-mac TIMEOUT 900 LONG --second-by-second 1)
