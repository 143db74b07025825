corvane_test(platform/tst_KernelText LINK corvane::platform)
