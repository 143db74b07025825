corvane_fuzz(KernelText LINK corvane::platform)
corvane_fuzz(HistoryFile LINK corvane::history)
corvane_fuzz(HistoryLine LINK corvane::history)
