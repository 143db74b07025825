corvane_test(support/tst_SystemCalls SYSTEM linux)
