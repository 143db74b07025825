corvane_test(memory/tst_MemorySampler)
corvane_test(memory/tst_ProcMemInfo)
corvane_test(memory/tst_MemoryFiles SYSTEM linux THREADED LINK corvane_faulty_calls)
corvane_test(memory/tst_LiveMemory SYSTEM linux TIMEOUT 1200)
if(TEST memory/LiveMemory)
  # It watches the whole machine's memory, which the other tests would move.
  set_tests_properties(memory/LiveMemory PROPERTIES RUN_SERIAL ON)
endif()
