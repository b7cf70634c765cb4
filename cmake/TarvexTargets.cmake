# The rules every target of ours shares: language level, warnings, sanitizers, and the kinds of target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTORCC_OPTIONS --format-version 1) # without the times of files, which no two builds share
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

find_package(Threads REQUIRED)

add_library(tarvex-rules INTERFACE)
target_compile_options(tarvex-rules INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Woverloaded-virtual
  -Wnon-virtual-dtor -Wimplicit-fallthrough -Wformat=2)
if(TARVEX_SANITIZE)
  target_compile_options(tarvex-rules INTERFACE -fsanitize=${TARVEX_SANITIZE} -fno-sanitize-recover=all
                         -fno-omit-frame-pointer)
  target_link_options(tarvex-rules INTERFACE -fsanitize=${TARVEX_SANITIZE})
  if(TARVEX_SANITIZE STREQUAL "thread")
    # The sanitizer knows no fences; those of Asio only back up what its mutexes order already.
    target_compile_definitions(tarvex-rules INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()

# Tests in a sanitizer build, to be linked behind the rules: a third less to wait for. The product is checked whole; a
# test's own null pointer ends the test all the same.
add_library(tarvex-test-rules INTERFACE)
if(TARVEX_SANITIZE)
  target_compile_options(tarvex-test-rules INTERFACE -O0 -fno-sanitize=null,alignment)
endif()

# Client code: no silent ASCII or byte casts into QString, no string-based connections, no keyword macros.
add_library(tarvex-qt-rules INTERFACE)
target_link_libraries(tarvex-qt-rules INTERFACE tarvex-rules)
target_compile_definitions(tarvex-qt-rules INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# tarvex_library(NAME SOURCES ... [LINKS ...] [PUBLIC_LINKS ...])
# A library is one folder and its include path is that folder alone. The links state all that it may know:
# PUBLIC_LINKS what its headers include, LINKS what only its sources do; tools/check-layers compares.
function(tarvex_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS;PUBLIC_LINKS" ${ARGN})
  add_library(${name} ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_PUBLIC_LINKS} PRIVATE tarvex-rules ${arg_LINKS})
endfunction()

# The same for a library of the client, built with the toolkit's code generators. FORMS, which come
# last, are files of resources/.
function(tarvex_qt_library name)
  cmake_parse_arguments(arg "" "" "FORMS" ${ARGN})
  tarvex_library(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE tarvex-qt-rules)
  set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  if(arg_FORMS) # by a rule of the build, so that whoever changes a form builds once and has it
    list(TRANSFORM arg_FORMS PREPEND ${PROJECT_SOURCE_DIR}/TarvexCloud/resources/)
    qt_wrap_ui(headers ${arg_FORMS})
    target_sources(${name} PRIVATE ${headers})
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
  endif()
endfunction()

# tarvex_program(NAME SOURCES ... LINKS ...): a program of the product.
function(tarvex_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE tarvex-rules ${arg_LINKS})
endfunction()

# tarvex_qt_test(NAME SOURCES ... LINKS ... [TIMEOUT seconds]): one Qt Test executable, run without a display.
function(tarvex_qt_test name)
  cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LINKS} Qt6::Test tarvex-qt-rules tarvex-test-rules)
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_compile_definitions(${name} PRIVATE TARVEX_SAMPLES="${CMAKE_CURRENT_SOURCE_DIR}/samples")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
