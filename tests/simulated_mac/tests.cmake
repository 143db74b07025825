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

# Objective-C sources on the runtime of this machine's compiler, which has no reference counting: the
# messages that they send to Apple's objects are recorded.
if(CORVANE_SYSTEM STREQUAL "simulated-mac" AND NOT CORVANE_ONLY_THREADED)
  set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
  enable_language(OBJCXX)
  add_library(corvane_recorded_mac STATIC simulated_mac/recorded/Foundation.mm simulated_mac/recorded/ServiceManagement.mm
              ${PROJECT_SOURCE_DIR}/src/app/Activity_mac.mm ${PROJECT_SOURCE_DIR}/src/login/LoginItem_mac.mm)
  set_target_properties(corvane_recorded_mac PROPERTIES AUTOMOC OFF)
  target_include_directories(corvane_recorded_mac BEFORE PRIVATE simulated_mac/include simulated_mac/libc
                             PUBLIC ${CMAKE_CURRENT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(corvane_recorded_mac PRIVATE -Wall -Wextra -Werror -fobjc-runtime=gcc -fblocks
                         -fconstant-string-class=NSConstantString -Wno-incomplete-implementation -Wno-deprecated-objc-isa-usage)
  target_link_libraries(corvane_recorded_mac PUBLIC objc ${CORVANE_BLOCKS_RUNTIME} Qt6::Core)
  corvane_test(simulated_mac/tst_Activity_mac LINK corvane_recorded_mac)
  corvane_test(simulated_mac/tst_LoginItem_mac LINK corvane_recorded_mac)
  corvane_test(simulated_mac/tst_DesktopSession_mac SOURCES ../src/app/DesktopSession_mac.cpp)
endif()
