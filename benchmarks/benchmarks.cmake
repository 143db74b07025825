corvane_benchmark(ProcessPass LINK corvane::processes)
