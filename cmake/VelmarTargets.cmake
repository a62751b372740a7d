# What every target of the project shares: the language, the warnings and Qt's strictness.
set(CMAKE_CXX_EXTENSIONS OFF)
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(velmar_options INTERFACE)
target_compile_features(velmar_options INTERFACE cxx_std_20)
target_include_directories(velmar_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(velmar_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wshadow=local;-Wnon-virtual-dtor;-Woverloaded-virtual;-Werror>)
target_compile_definitions(velmar_options INTERFACE
  QT_DISABLE_DEPRECATED_BEFORE=0x060400 QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_FOREACH)
# A program loads only the libraries that it uses; the print tool, for one, starts without Qt Widgets.
target_link_options(velmar_options INTERFACE -Wl,--as-needed)
if(VELMAR_SANITIZE)
  target_compile_options(velmar_options INTERFACE -fsanitize=${VELMAR_SANITIZE} -fno-omit-frame-pointer
                                                  -fno-sanitize-recover=all)
  target_link_options(velmar_options INTERFACE -fsanitize=${VELMAR_SANITIZE})
endif()

# velmar_setup(TARGET): the project's options and Qt's code generators for one target.
function(velmar_setup target)
  target_link_libraries(${target} PUBLIC velmar_options)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
endfunction()

# velmar_test(NAME [SOURCES ...] LIBS ... [LABELS ...]): one test program, run offscreen by ctest.
# Without SOURCES the program is NAME.cpp. A test that must not run beside others says SERIAL.
function(velmar_test name)
  cmake_parse_arguments(arg "SERIAL" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  if(NOT arg_SOURCES)
    set(arg_SOURCES ${name}.cpp)
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  velmar_setup(${name})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} velmar_test_support Qt6::Test)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;VELMAR_BIN_DIR=${PROJECT_BINARY_DIR}/bin")
  if(arg_SERIAL)
    set_tests_properties(${name} PROPERTIES RUN_SERIAL ON)
  endif()
endfunction()
