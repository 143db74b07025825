foreach(test ChipName_mac CoreTicks_mac FailingMac FrequencyTables_mac HostPort_mac IOReportBridge_mac
             MemoryCounters_mac PageSize_mac ProcessBridge_mac SimulatedMac SimulatedMachines
             ThermalBridge_mac ThreadPriority_mac)
  corvane_test(simulated_mac/tst_${test} SYSTEM simulated-mac
               LINK corvane::telemetry corvane::processes corvane::jobs corvane_simulated_mac)
endforeach()
