corvane_benchmark(Sparkline LINK corvane::charts)
corvane_benchmark(History LINK corvane::history)
