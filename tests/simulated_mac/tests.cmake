foreach(test ChipName_mac ChipSource_mac CoreTicks_mac FailingMac FrequencyTables_mac GPUClients_mac HostPort_mac
             IOReportBridge_mac LivelyLoad MemoryCounters_mac ModelFiles_mac PageSize_mac ProcessBridge_mac SimulatedMac SimulatedMachines
             ThermalBridge_mac ThreadPriority_mac)
  corvane_test(simulated_mac/tst_${test} SYSTEM simulated-mac
               LINK corvane::chip corvane::memory corvane::models corvane::processes)
endforeach()
corvane_test(simulated_mac/tst_PowerCard_mac SYSTEM simulated-mac LINK corvane::chip corvane::devices)

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
  add_library(corvane_recorded_mac STATIC
    simulated_mac/recorded/AppKit.mm simulated_mac/recorded/Foundation.mm simulated_mac/recorded/QtMenu.mm
    simulated_mac/recorded/ServiceManagement.mm simulated_mac/recorded/Sparkle.mm)
  foreach(source app/AboutPanel app/Activity instance/ApplicationService login/LoginItem tray/StatusItem ui/SystemStyle
                 ui/SystemSymbol updates/BundleVersion updates/SystemUpdater windows/PanelStyle windows/StandardCommands
                 windows/WindowPlatform windows/WindowStyle)
    target_sources(corvane_recorded_mac PRIVATE ${PROJECT_SOURCE_DIR}/src/${source}_mac.mm)
  endforeach()
  target_sources(corvane_recorded_mac PRIVATE ${PROJECT_SOURCE_DIR}/src/app/AboutTexts.cpp
                                              ${PROJECT_SOURCE_DIR}/src/app/DesktopSession_mac.cpp
                                              ${PROJECT_SOURCE_DIR}/src/platform/HostSystem_mac.cpp
                                              ${PROJECT_SOURCE_DIR}/src/tray/TrayLabel_mac.cpp
                                              ${PROJECT_SOURCE_DIR}/src/windows/KeyWindow_mac.cpp
                                              ${PROJECT_SOURCE_DIR}/src/windows/PanelWindow_mac.cpp)
  set_source_files_properties(${PROJECT_SOURCE_DIR}/src/tray/TrayLabel_mac.cpp ${PROJECT_SOURCE_DIR}/src/windows/KeyWindow_mac.cpp
                              PROPERTIES COMPILE_OPTIONS "-include;${CMAKE_CURRENT_LIST_DIR}/QtOnMac.h")
  target_include_directories(corvane_recorded_mac BEFORE PRIVATE simulated_mac/include simulated_mac/libc
                             PUBLIC ${CMAKE_CURRENT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src)
  # Without weak references: objects live as long as the process.
  target_compile_options(corvane_recorded_mac PRIVATE -Wall -Wextra -Werror -fobjc-runtime=gcc -fblocks -F${CMAKE_CURRENT_LIST_DIR}
                         -fconstant-string-class=NSConstantString -Wno-incomplete-implementation -Wno-objc-property-implementation -Wno-deprecated-objc-isa-usage
                         -U__weak -D__weak=)
  target_link_libraries(corvane_recorded_mac PUBLIC objc ${CORVANE_BLOCKS_RUNTIME} Qt6::Widgets)
  foreach(test AboutPanel Activity LoginItem PanelStyle PanelWindow StandardCommands StatusItem SystemStyle SystemSymbol
               WindowPlatform)
    corvane_test(simulated_mac/tst_${test}_mac LINK corvane_recorded_mac)
  endforeach()
  corvane_test(simulated_mac/tst_ApplicationService_mac SOURCES ../src/instance/ApplicationService.h LINK corvane_recorded_mac)
  corvane_test(simulated_mac/tst_SystemUpdater_mac SOURCES ../src/updates/SystemUpdater.h LINK corvane_recorded_mac)
  target_link_libraries(tst_WindowPlatform_mac PRIVATE corvane::windows)
  # The whole program. What a Mac's sources define stands before the rooms, which define it for Linux.
  foreach(test CorvaneApp DesktopSession)
    corvane_test(simulated_mac/tst_${test}_mac LINK corvane_recorded_mac corvane::app)
    target_link_options(tst_${test}_mac PRIVATE -Wl,--allow-multiple-definition)
  endforeach()
endif()
