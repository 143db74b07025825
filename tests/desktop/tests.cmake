corvane_test(desktop/tst_Desktop SYSTEM linux SOURCES support/AccessibilityBus.cpp LINK corvane::app)
if(TARGET tst_Desktop)
  target_compile_definitions(tst_Desktop PRIVATE CORVANE_PROGRAM="$<TARGET_FILE:corvane>")
  add_dependencies(tst_Desktop corvane)
  set_target_properties(
    tst_Desktop PROPERTIES CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_SOURCE_DIR}/desktop/virtual-desktop)
  set_tests_properties(desktop/Desktop PROPERTIES ENVIRONMENT_MODIFICATION "QT_QPA_PLATFORM=unset:")
endif()
