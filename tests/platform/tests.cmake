corvane_test(platform/tst_BootClock LINK corvane::platform)
corvane_test(platform/tst_KernelText LINK corvane::platform)
corvane_test(platform/tst_KernelFile SYSTEM linux LINK corvane::platform)
