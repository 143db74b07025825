corvane_test(sampling/tst_SystemSampler THREADED LINK corvane::sampler)
