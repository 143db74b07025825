corvane_test(support/tst_SystemCalls SYSTEM linux SOURCES support/SystemCalls.cpp)
