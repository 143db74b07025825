corvane_test(history/tst_HistoryStore THREADED LINK corvane::history)
