corvane_benchmark(History LINK corvane::history)
corvane_benchmark(Tick LINK corvane::sampler)
corvane_benchmark(Label LINK corvane::app)
corvane_benchmark(MemorySample LINK corvane::readers)
