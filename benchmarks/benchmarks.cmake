corvane_benchmark(History LINK corvane::history)
