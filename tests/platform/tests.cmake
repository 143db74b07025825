corvane_test(platform/tst_BootClock LINK corvane::platform)
corvane_test(platform/tst_KernelText LINK corvane::platform)

corvane_test(platform/tst_BackgroundJob THREADED LINK corvane::jobs)
add_executable(pending_job platform/pending_job.cpp)
target_link_libraries(pending_job PRIVATE corvane::jobs)
add_dependencies(tst_BackgroundJob pending_job)
target_compile_definitions(tst_BackgroundJob PRIVATE PENDING_JOB="$<TARGET_FILE:pending_job>")
corvane_test(platform/tst_ThreadPriority SYSTEM linux THREADED LINK corvane::jobs)
