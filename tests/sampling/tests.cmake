corvane_test(sampling/tst_ProcMemInfo LINK corvane::readers)
corvane_test(sampling/tst_ProcStat LINK corvane::readers)
corvane_test(sampling/tst_ReferenceDate LINK corvane::records)
