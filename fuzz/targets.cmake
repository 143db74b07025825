corvane_fuzz(KernelText LINK corvane::platform)
corvane_fuzz(ArgumentBlock LINK corvane::processes)
corvane_fuzz(Classify LINK corvane::processes)
corvane_fuzz(ProcessFiles LINK corvane::processes)
