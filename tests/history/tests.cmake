corvane_test(history/tst_JsonText LINK corvane::history)
corvane_test(history/tst_PersistedMetric LINK corvane::history)
corvane_test(history/tst_HistoryStore THREADED LINK corvane::history)
