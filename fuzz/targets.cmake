corvane_fuzz(KernelText LINK corvane::platform)
