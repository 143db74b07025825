# Included by the project when check-objective-c configures it: sources are checked, never compiled.
include_directories(BEFORE ${CMAKE_CURRENT_LIST_DIR}/include ${CMAKE_CURRENT_LIST_DIR}/libc)
add_compile_options(-fsyntax-only -fblocks "SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/QtOnMac.h" $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=macosx-13>)
