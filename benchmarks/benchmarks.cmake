corvane_benchmark(ProcessPass LINK corvane::processes)
corvane_benchmark(History LINK corvane::history)
