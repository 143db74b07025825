corvane_benchmark(Sparkline LINK corvane::charts)
