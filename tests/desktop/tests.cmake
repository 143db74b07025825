# These run on a display, a bus and a home of their own. Under AddressSanitizer whole stacks are kept of what
# is allocated: libraries without frame pointers would cut them off before a function that lsan.supp can name.
foreach(name Desktop WaylandSession)
  corvane_test(desktop/tst_${name} SYSTEM linux LINK corvane::app)
  if(TARGET tst_${name})
    target_compile_definitions(
      tst_${name} PRIVATE CORVANE_PROGRAM="$<TARGET_FILE:corvane>"
                          CORVANE_DESKTOP_ENTRY="${PROJECT_SOURCE_DIR}/packaging/linux/corvane.desktop.in")
    add_dependencies(tst_${name} corvane)
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
