corvane_test(sampling/tst_AppSettings SYSTEM linux simulated-mac
  SOURCES ${PROJECT_SOURCE_DIR}/sampling/AppSettings.cpp ${PROJECT_SOURCE_DIR}/sampling/AppSettings.h
  LINK    corvane::records)
corvane_test(sampling/tst_ByteFormatter LINK corvane::records)
corvane_test(sampling/tst_CPUCoreSampler LINK corvane::readers)
corvane_test(sampling/tst_HistoryWindow LINK corvane::records)
corvane_test(sampling/tst_MemorySampler LINK corvane::readers)
corvane_test(sampling/tst_ProcMemInfo LINK corvane::readers)
corvane_test(sampling/tst_ProcStat LINK corvane::readers)
corvane_test(sampling/tst_ReferenceDate LINK corvane::records)
corvane_test(sampling/tst_SeriesReduction LINK corvane::records)
corvane_test(sampling/tst_SystemMetrics LINK corvane::records)
corvane_test(sampling/tst_CoreTicks SYSTEM linux LINK corvane::readers)
corvane_test(sampling/tst_MemoryCounters SYSTEM linux LINK corvane::readers)
