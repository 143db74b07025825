foreach(test ChipName_mac ChipSource_mac CoreTicks_mac FailingMac FrequencyTables_mac HostPort_mac IOReportBridge_mac
             LivelyLoad MemoryCounters_mac PageSize_mac ProcessBridge_mac SimulatedMac SimulatedMachines
             ThermalBridge_mac ThreadPriority_mac)
  corvane_test(simulated_mac/tst_${test} SYSTEM simulated-mac
               LINK corvane::chip corvane::memory corvane::processes)
endforeach()

if(CORVANE_SYSTEM STREQUAL "simulated-mac" AND NOT CORVANE_ONLY_THREADED)
  add_executable(corvane_simulated simulated_mac/main.cpp)
  set_target_properties(corvane_simulated PROPERTIES OUTPUT_NAME corvane-simulated-mac)
  target_include_directories(corvane_simulated PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(corvane_simulated PRIVATE corvane::app corvane_simulated_mac)
endif()
