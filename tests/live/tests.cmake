if(CORVANE_SYSTEM STREQUAL "mac")
  set(live_mac live/LiveMac_mac.cpp)
else()
  set(live_mac live/LiveMac_simulated.cpp)
endif()
# The arguments are there to be found by the test.
corvane_test(live/tst_LiveMac SYSTEM mac simulated-mac ARGUMENTS -maxwarnings 1000
             SOURCES ${live_mac} LINK corvane::memory corvane::chip corvane::processes)
corvane_test(live/tst_MachineCapture SYSTEM linux LINK corvane::memory corvane::chip)
