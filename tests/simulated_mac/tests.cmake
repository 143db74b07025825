foreach(test ChipName_mac CoreTicks_mac FailingMac FrequencyTables_mac HostPort_mac IOReportBridge_mac
             MemoryCounters_mac PageSize_mac SimulatedMac SimulatedMachines ThermalBridge_mac)
  corvane_test(simulated_mac/tst_${test} SYSTEM simulated-mac LINK corvane::telemetry
                                                                   corvane_simulated_mac)
endforeach()
