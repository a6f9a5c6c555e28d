# What every target of the project shares: warnings as errors, Qt's strictness
# macros, sanitizers, one precompiled header, and the shape of the bundle.

add_library(quarry_warnings INTERFACE)
target_compile_options(quarry_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wunused
  -Wnull-dereference -Wimplicit-fallthrough -Werror)
# GCC's null-dereference pass reports false positives inside Qt and the standard
# library once it inlines them, and sanitizers add branches that confuse it further.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(quarry_warnings INTERFACE -Wno-null-dereference -Wduplicated-cond -Wlogical-op)
endif()
target_compile_definitions(quarry_warnings INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_CAST_FROM_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
  QT_NO_JAVA_STYLE_ITERATORS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(QUARRY_SANITIZE)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # With the sanitizers' branches in between, GCC takes the parts of a variant that are not in use for uninitialized.
    target_compile_options(quarry_warnings INTERFACE -Wno-maybe-uninitialized)
  endif()
  target_compile_options(quarry_warnings INTERFACE
    -fsanitize=${QUARRY_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quarry_warnings INTERFACE -fsanitize=${QUARRY_SANITIZE})
  # Sanitizer branches make GCC believe in variants that were never set; the plain builds keep the warning.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(quarry_warnings INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

# One precompiled header for everything that links QtCore only.
if(QUARRY_PCH)
  add_library(quarry_pch STATIC ${CMAKE_SOURCE_DIR}/cmake/pch.cpp)
  target_link_libraries(quarry_pch PUBLIC quarry_warnings Qt6::Core Threads::Threads)
  target_compile_options(quarry_pch PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
  target_precompile_headers(quarry_pch PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch.h)
endif()

function(quarry_common target)
  target_link_libraries(${target} PRIVATE quarry_warnings)
  if(QUARRY_PCH)
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    target_precompile_headers(${target} REUSE_FROM quarry_pch)
  endif()
endfunction()

# quarry_library(NAME SOURCES file... LINKS target... [PRIVATE_LINKS target...]): the library of one folder of src/.
# Includes are written from src/: #include "model/QueryCore.h".
function(quarry_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC Qt6::Core Threads::Threads ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
  quarry_common(${name})
endfunction()

# quarry_ui_library(NAME SOURCES file... [LAYOUTS file.ui...] LINKS target... [PRIVATE_LINKS target...]): the windows of
# one folder of src/, in its ui/. They use the same precompiled header: few files include Qt's windows, and each other
# ones of them. The layout X.ui is included as "FOLDER/ui/ui_X.h". Not by AUTOUIC: with it, an edited layout reaches
# only the next build but one, and what reads the sources without a build cannot make them all.
function(quarry_ui_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LAYOUTS;LINKS;PRIVATE_LINKS" ${ARGN})
  set(CMAKE_AUTOMOC ON)
  set(CMAKE_AUTOGEN_ORIGIN_DEPENDS OFF) # What it links need not be built before.
  set(headers)
  if(ARG_LAYOUTS)
    qt_wrap_ui(headers ${ARG_LAYOUTS})
    add_custom_target(${name}_layouts DEPENDS ${headers})
    add_dependencies(quarry_layouts ${name}_layouts)
  endif()
  quarry_library(${name} SOURCES ${ARG_SOURCES} ${headers} LINKS ${ARG_LINKS} PRIVATE_LINKS ${ARG_PRIVATE_LINKS})
  target_include_directories(${name} PRIVATE ${CMAKE_BINARY_DIR}/src)
  target_link_libraries(${name} PUBLIC Qt6::Widgets)
endfunction()
add_custom_target(quarry_layouts)

# The bundle, in the build tree as in the install tree.
set(QUARRY_BUNDLE QuarrySpotter.app/Contents)
set(QUARRY_AGENT_BUNDLE ${QUARRY_BUNDLE}/Agents/QuarrySpotterAgent.app/Contents)
set(QUARRY_UPDATER_BUNDLE ${QUARRY_AGENT_BUNDLE}/bin/QuarrySpotterUpdater.app/Contents)

# quarry_program(NAME BUNDLE dir SOURCES file... LINKS target...): one program, built into its bundle's bin/.
function(quarry_program name)
  cmake_parse_arguments(ARG "" "BUNDLE" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_compile_definitions(${name} PRIVATE QUARRY_VERSION="${PROJECT_VERSION}")
  target_link_libraries(${name} PRIVATE Qt6::Core Threads::Threads ${ARG_LINKS})
  quarry_common(${name})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${ARG_BUNDLE}/bin)
  install(TARGETS ${name} RUNTIME DESTINATION lib/${ARG_BUNDLE}/bin)
endfunction()

# quarry_test(NAME SOURCES file... LINKS target... [ALONE what] [TIMEOUT seconds]): one test program a folder, its cases
# found by ctest. Of the cases that name the same thing after ALONE, one runs at a time.
function(quarry_test name)
  cmake_parse_arguments(ARG "" "ALONE;TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE QUARRY_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    QUARRY_BUNDLE_DIR="${CMAKE_BINARY_DIR}/${QUARRY_BUNDLE}"
    QUARRY_UPDATER_BUNDLE_DIR="${CMAKE_BINARY_DIR}/${QUARRY_UPDATER_BUNDLE}")
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest GTest::gmock GTest::gtest_main)
  quarry_common(${name})
  # No test reaches the session of whoever runs it; one that needs a session bus starts its own.
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} RESOURCE_LOCK "${ARG_ALONE}"
      ENVIRONMENT "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent/bus")
endfunction()

# quarry_screen_test(NAME [OWN_PROCESSES] SOURCES file... LINKS target...): the same for windows. Each case runs in a
# desktop of its own: an empty screen and a session bus (tests/support/with-desktop), if asked for also processes.
function(quarry_screen_test name)
  cmake_parse_arguments(SCREEN "OWN_PROCESSES" "" "" ${ARGN})
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_SOURCE_DIR}/tests/support/with-desktop)
  if(SCREEN_OWN_PROCESSES)
    list(APPEND CMAKE_CROSSCOMPILING_EMULATOR --own-processes)
  endif()
  set(CMAKE_AUTOMOC ON)
  set(CMAKE_AUTOGEN_ORIGIN_DEPENDS OFF)
  quarry_test(${name} ${SCREEN_UNPARSED_ARGUMENTS})
endfunction()

# quarry_bench(NAME SOURCES file... LINKS target...)
function(quarry_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/bench ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE Qt6::Core ${ARG_LINKS})
  quarry_common(${name})
endfunction()
