corvane_test(support/tst_SystemCalls SYSTEM linux)
if(CORVANE_SYSTEM STREQUAL "linux" AND NOT CORVANE_ONLY_THREADED)
  add_test(NAME support/LinuxScripts COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/support/check-linux-scripts)
endif()
