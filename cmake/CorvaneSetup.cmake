# Language, Qt, warnings and sanitizers: what holds for every target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)

if(NOT CORVANE_SYSTEM)
  if(APPLE)
    set(CORVANE_SYSTEM mac)
  else()
    set(CORVANE_SYSTEM linux)
  endif()
endif()

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Svg)
if(NOT CORVANE_SYSTEM STREQUAL "mac")
  find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
  find_path(CORVANE_SD_BUS_HEADERS systemd/sd-bus.h PATH_SUFFIXES elogind)
  find_library(CORVANE_SD_BUS NAMES systemd elogind)
  if(NOT CORVANE_SD_BUS_HEADERS OR NOT CORVANE_SD_BUS)
    message(FATAL_ERROR "systemd/sd-bus.h and libsystemd or libelogind are missing: install libsystemd-dev or libelogind-dev")
  endif()
  add_library(corvane_sd_bus INTERFACE)
  target_include_directories(corvane_sd_bus SYSTEM INTERFACE ${CORVANE_SD_BUS_HEADERS})
  target_link_libraries(corvane_sd_bus INTERFACE ${CORVANE_SD_BUS})
else()
  enable_language(OBJCXX)
endif()
find_package(Threads REQUIRED)
find_package(nlohmann_json 3.10 REQUIRED) # Ubuntu 22.04 has 3.10.5, Debian 12 has 3.11.2.

find_program(CORVANE_CCACHE ccache)
if(CORVANE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CORVANE_CCACHE})
endif()

# Hundreds of test programs are linked, each in a tenth of the time.
find_program(CORVANE_MOLD mold)
if(CORVANE_MOLD AND CORVANE_SYSTEM MATCHES "linux|simulated-mac" AND NOT CMAKE_BUILD_TYPE STREQUAL "Release")
  add_link_options(-fuse-ld=mold)
endif()

# What every target of ours is compiled with; linked by corvane_library and corvane_test.
add_library(corvane_flags INTERFACE)
target_include_directories(corvane_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(corvane_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                               -Woverloaded-virtual -Wimplicit-fallthrough
                                               $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc;-fobjc-weak>
                                               $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>)
if(CORVANE_WARNINGS_ARE_ERRORS)
  target_compile_options(corvane_flags INTERFACE -Werror)
endif()
target_compile_definitions(
  corvane_flags
  INTERFACE QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_URL_CAST_FROM_STRING
            QT_NO_CAST_FROM_BYTEARRAY
            QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
            QT_NO_FOREACH
            CORVANE_IDENTIFIER="${CORVANE_IDENTIFIER}"
            CORVANE_VERSION="${PROJECT_VERSION}"
            CORVANE_BUILD="${CORVANE_BUILD_NUMBER}")
# What users run is hardened: it reads what other programs wrote. A distribution's own choice of FORTIFY is kept.
if(CORVANE_SYSTEM STREQUAL "linux" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(corvane_flags INTERFACE -fstack-protector-strong)
  if(NOT CMAKE_CXX_FLAGS MATCHES FORTIFY_SOURCE)
    target_compile_options(corvane_flags INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
  add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()
if(CORVANE_SANITIZE)
  # Their reports need lines, no variables.
  target_compile_options(corvane_flags INTERFACE -g1 -fsanitize=${CORVANE_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=all)
  target_link_options(corvane_flags INTERFACE -fsanitize=${CORVANE_SANITIZE})
endif()
