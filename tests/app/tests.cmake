corvane_test(app/tst_CorvaneApp)
corvane_test(app/tst_AboutTexts)
corvane_test(app/tst_AboutPanel SYSTEM linux simulated-mac)
corvane_test(app/tst_CommandLine)
corvane_test(app/tst_Commands)
corvane_test(app/tst_MenuBar)
corvane_test(app/tst_MachineViews SYSTEM linux SOURCES app/FiguresInWords.cpp LINK corvane_stand_in_nvidia)
corvane_test(app/tst_DisplayGuard)
corvane_test(app/tst_QuitSignals)
corvane_test(app/tst_ProcessStart)
corvane_test(app/tst_Soak SYSTEM linux TIMEOUT 3600 LONG --ticks 86400
             SOURCES app/SoakMachine.cpp support/SteppedClock.cpp)

# These start the program itself.
corvane_test(app/tst_RunningProgram SYSTEM linux TIMEOUT 900)
corvane_test(app/tst_TracedProgram SYSTEM linux TIMEOUT 900)
# The libraries that X11's session managers are made with.
find_path(CORVANE_SM_HEADERS X11/SM/SMlib.h)
find_library(CORVANE_SM SM)
find_library(CORVANE_ICE ICE)
if(CORVANE_SM_HEADERS AND CORVANE_SM AND CORVANE_ICE)
  corvane_test(app/tst_SessionEnd SYSTEM linux SOURCES support/SessionManager.cpp
               LINK ${CORVANE_SM} ${CORVANE_ICE})
endif()
corvane_test(app/tst_FailingCalls SYSTEM linux TIMEOUT 1800 LONG --all 40)
corvane_test(app/tst_HangingFiles SYSTEM linux TIMEOUT 900 SOURCES processes/LiveProcess.cpp)
corvane_program_tests(tst_RunningProgram tst_TracedProgram tst_SessionEnd tst_FailingCalls tst_HangingFiles)
if(TARGET tst_TracedProgram)
  add_library(quick_clock MODULE app/quick_clock.cpp)
  add_dependencies(tst_TracedProgram quick_clock)
  target_compile_definitions(tst_TracedProgram PRIVATE QUICK_CLOCK="$<TARGET_FILE:quick_clock>")
  target_compile_definitions(tst_RunningProgram PRIVATE CORVANE_SANITIZERS="${CORVANE_SANITIZE}")
  add_library(failing_call MODULE app/failing_call.cpp)
  add_dependencies(tst_FailingCalls quick_clock failing_call)
  target_compile_definitions(
    tst_FailingCalls PRIVATE CORVANE_SANITIZERS="${CORVANE_SANITIZE}" QUICK_CLOCK="$<TARGET_FILE:quick_clock>"
                             FAILING_CALL="$<TARGET_FILE:failing_call>")
  add_library(hanging_file MODULE app/hanging_file.cpp)
  add_dependencies(tst_HangingFiles quick_clock hanging_file stand_in)
  target_compile_definitions(
    tst_HangingFiles PRIVATE CORVANE_SANITIZERS="${CORVANE_SANITIZE}" QUICK_CLOCK="$<TARGET_FILE:quick_clock>"
                             HANGING_FILE="$<TARGET_FILE:hanging_file>" STAND_IN="$<TARGET_FILE:stand_in>")
endif()
