corvane_benchmark(Sparkline LINK corvane::charts)
corvane_benchmark(History LINK corvane::history)
corvane_benchmark(Dashboard LINK corvane::app)
