# corvane_library(NAME SOURCES … [MAC …] [LINUX …] [MAC_DESKTOP …] [LINUX_DESKTOP …]
#                 [FRAMEWORKS …] [HEADERS …] [LINK …])
#
# Adds the room `corvane_NAME`, known to others as `corvane::NAME`. SOURCES are shared; one of MAC and
# LINUX is added by the system: what reads the machine. The DESKTOP pair talks to the desktop (menu
# bar, login items): the simulated Mac reads a Mac but shows itself on a Linux desktop. FRAMEWORKS are
# what the Apple sources link on a Mac. HEADERS are what most of the sources include: with
# CORVANE_PRECOMPILE they are compiled once.
function(corvane_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;MAC;LINUX;MAC_DESKTOP;LINUX_DESKTOP;FRAMEWORKS;HEADERS;LINK")
  set(target corvane_${name})
  set(sources ${arg_SOURCES})
  if(CORVANE_SYSTEM STREQUAL "linux")
    list(APPEND sources ${arg_LINUX} ${arg_LINUX_DESKTOP})
  elseif(CORVANE_SYSTEM STREQUAL "mac")
    list(APPEND sources ${arg_MAC} ${arg_MAC_DESKTOP})
    list(TRANSFORM arg_FRAMEWORKS PREPEND "-framework ")
    list(APPEND arg_LINK ${arg_FRAMEWORKS})
  else()
    list(APPEND sources ${arg_MAC} ${arg_LINUX_DESKTOP})
  endif()
  if(sources)
    add_library(${target} STATIC EXCLUDE_FROM_ALL ${sources}) # Built for whatever links it.
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  if(CORVANE_PRECOMPILE AND arg_HEADERS)
    target_precompile_headers(${target} PRIVATE ${arg_HEADERS})
  endif()
  add_library(corvane::${name} ALIAS ${target})
  target_link_libraries(${target} ${scope} corvane_flags ${arg_LINK})
  if(arg_MAC AND CORVANE_SYSTEM STREQUAL "simulated-mac")
    target_link_libraries(${target} PUBLIC corvane_simulated_mac)
  endif()
endfunction()

# corvane_test(FOLDER/tst_Name [SYSTEM linux|mac|simulated-mac …] [THREADED] [ARGUMENTS …] [LONG …] [SOURCES …] [LINK …])
#
# Adds a Qt Test program from tests/FOLDER/tst_Name.cpp, run by ctest without a display and with home
# (CFFIXED_USER_HOME: a Mac's preferences) and XDG folders of its own. It links the room FOLDER, where there is one, and what LINK names. SYSTEM names the systems
# it is for (default: all); THREADED marks it for the ThreadSanitizer preset. LONG names the arguments of a longer run of
# the same program, FOLDER/NameLong, which only `ctest -C long` adds. Extra SOURCES are relative to the tests folder.
function(corvane_test path)
  cmake_parse_arguments(PARSE_ARGV 1 arg "THREADED" "TIMEOUT" "SYSTEM;ARGUMENTS;LONG;SOURCES;LINK")
  if(arg_SYSTEM AND NOT CORVANE_SYSTEM IN_LIST arg_SYSTEM)
    return()
  endif()
  if(CORVANE_ONLY_THREADED AND NOT arg_THREADED)
    return()
  endif()
  get_filename_component(target ${path} NAME)
  add_executable(${target} ${CMAKE_CURRENT_SOURCE_DIR}/${path}.cpp ${arg_SOURCES})
  get_filename_component(folder ${path} DIRECTORY)
  if(TARGET corvane::${folder})
    list(APPEND arg_LINK corvane::${folder})
  endif()
  target_link_libraries(${target} PRIVATE corvane_test_support ${arg_LINK})
  target_precompile_headers(${target} REUSE_FROM corvane_test_support)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp
                              PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  set(home ${CMAKE_CURRENT_BINARY_DIR}/home/${target})
  # Apple's AddressSanitizer refuses to start when it is asked for leaks.
  set(leaks 1)
  if(CORVANE_SYSTEM STREQUAL "mac")
    set(leaks 0)
  endif()
  file(MAKE_DIRECTORY ${home}/runtime)
  file(CHMOD ${home}/runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  string(REPLACE "tst_" "" name ${path})
  add_test(NAME ${name} COMMAND ${target} ${arg_ARGUMENTS})
  set(tests ${name})
  if(arg_LONG)
    add_test(NAME ${name}Long COMMAND ${target} ${arg_LONG} CONFIGURATIONS long)
    list(APPEND tests ${name}Long)
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  set_tests_properties(
    ${tests}
    PROPERTIES
      TIMEOUT ${arg_TIMEOUT}
      ENVIRONMENT
      "HOME=${home};CFFIXED_USER_HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;XDG_CACHE_HOME=${home}/cache;XDG_RUNTIME_DIR=${home}/runtime;QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=qt.qpa.*=false;LC_ALL=C.UTF-8;ASAN_OPTIONS=detect_leaks=${leaks};LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp:ignore_noninstrumented_modules=1"
  )
endfunction()
