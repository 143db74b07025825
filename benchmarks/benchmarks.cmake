corvane_benchmark(History LINK corvane::history)
corvane_benchmark(MemorySample LINK corvane::readers)
