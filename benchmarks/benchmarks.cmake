corvane_benchmark(History LINK corvane::history)
corvane_benchmark(Tick LINK corvane::sampler)
corvane_benchmark(Label LINK corvane::app)
corvane_benchmark(MemorySample LINK corvane::readers)
if(CORVANE_SYSTEM STREQUAL "linux")
  corvane_benchmark(ChipSample LINK corvane::telemetry)
  target_compile_definitions(bench_ChipSample
                             PRIVATE CORVANE_MACHINES="${PROJECT_SOURCE_DIR}/tests/machines")
endif()
