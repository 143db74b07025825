# These run on a display, a bus and in a home of their own. AddressSanitizer keeps whole stacks of allocations for
# them: libraries without frame pointers would end a stack before the function that lsan.supp names.
foreach(name Desktop WaylandSession)
  corvane_test(desktop/tst_${name} SYSTEM linux LINK corvane::app)
  if(TARGET tst_${name})
    target_compile_definitions(
      tst_${name} PRIVATE CORVANE_DESKTOP_ENTRY="${PROJECT_SOURCE_DIR}/packaging/linux/corvane.desktop.in")
    set_target_properties(
      tst_${name} PROPERTIES CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_SOURCE_DIR}/desktop/virtual-desktop)
    set_tests_properties(
      desktop/${name}
      PROPERTIES
        ENVIRONMENT_MODIFICATION
        "QT_QPA_PLATFORM=unset:;ASAN_OPTIONS=string_append::fast_unwind_on_malloc=0;LSAN_OPTIONS=string_append::suppressions=${CMAKE_CURRENT_SOURCE_DIR}/desktop/lsan.supp"
    )
  endif()
endforeach()
if(TARGET tst_Desktop)
  set_tests_properties(desktop/Desktop PROPERTIES RUN_SERIAL ON) # It waits for pictures and rows by the clock.
  target_sources(tst_Desktop PRIVATE models/ModelTree.cpp processes/LiveProcess.cpp)
  add_dependencies(tst_Desktop stand_in)
  target_compile_definitions(tst_Desktop PRIVATE STAND_IN="$<TARGET_FILE:stand_in>")
endif()
corvane_program_tests(tst_Desktop tst_WaylandSession)
