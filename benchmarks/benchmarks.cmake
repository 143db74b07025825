corvane_benchmark(History LINK corvane::history)
if(CORVANE_SYSTEM STREQUAL "linux")
  corvane_benchmark(ChipSample LINK corvane::telemetry)
  target_compile_definitions(bench_ChipSample
                             PRIVATE CORVANE_MACHINES="${PROJECT_SOURCE_DIR}/tests/machines")
endif()
