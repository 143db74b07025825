corvane_test(sampling/tst_ProcStat LINK corvane::readers)
