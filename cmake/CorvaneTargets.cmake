# Build settings that every target of this project shares.

option(CORVANE_TESTS "Build the tests" ON)
option(CORVANE_BENCHMARKS "Build the benchmarks" OFF)
option(CORVANE_FUZZERS "Build the fuzz targets (clang)" OFF)
option(CORVANE_COVERAGE "Count which lines run (g++)" OFF)
set(CORVANE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Program, plug-in and modules stand side by side, and find each other there wherever they are moved.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")
include(GNUInstallDirs)
set(CORVANE_INSTALL_FOLDER "${CMAKE_INSTALL_LIBDIR}/corvane")

find_program(CORVANE_CCACHE ccache)
if(CORVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CORVANE_CCACHE}")
endif()

add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict) # false alarms on std::string, GCC bug 105651
endif()
add_link_options(-Wl,--as-needed -Wl,-O1)

if(CORVANE_SANITIZE)
  add_compile_options(-fsanitize=${CORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORVANE_SANITIZE})
endif()
if(CORVANE_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# Links what a start of the program loads with a C++ library of its own: to load and bind the system's takes a fifth
# of that start. Not for the sanitizers, which have to see its calls.
function(corvane_own_runtime target)
  if(NOT CORVANE_SANITIZE)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc -Wl,--exclude-libs,ALL -Wl,--gc-sections)
  endif()
endfunction()

# A layer of the product: a static library named corvane_NAME of the sources in its folder.
function(corvane_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 LAYER "" "" "SOURCES;LINKS")
  add_library(corvane_${name} STATIC ${LAYER_SOURCES})
  target_include_directories(corvane_${name} PUBLIC "${CMAKE_SOURCE_DIR}")
  target_link_libraries(corvane_${name} PUBLIC ${LAYER_LINKS})
endfunction()

# A module that the plug-in loads at first use: corvane-NAME.so beside the plug-in, exporting one function.
# PACKAGE: the package that it is installed with, when it is not that of the program; none: it isn't installed.
function(corvane_module name)
  cmake_parse_arguments(PARSE_ARGV 1 MODULE "" "PACKAGE" "SOURCES;LINKS")
  add_library(corvane-${name} MODULE ${MODULE_SOURCES})
  set_target_properties(corvane-${name} PROPERTIES PREFIX "")
  target_include_directories(corvane-${name} PRIVATE "${CMAKE_SOURCE_DIR}")
  target_link_libraries(corvane-${name} PRIVATE ${MODULE_LINKS})
  if(NOT MODULE_PACKAGE)
    set(MODULE_PACKAGE corvane)
  endif()
  if(NOT MODULE_PACKAGE STREQUAL "none")
    install(TARGETS corvane-${name} LIBRARY DESTINATION "${CORVANE_INSTALL_FOLDER}" COMPONENT ${MODULE_PACKAGE})
  endif()
endfunction()

# A module that is nothing but a library: its table is a TABLE, from HEADER, of the library's own functions.
function(corvane_library_module name)
  cmake_parse_arguments(PARSE_ARGV 1 MODULE "" "HEADER;TABLE" "LINKS")
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}_module.cpp")
  configure_file("${CMAKE_SOURCE_DIR}/cmake/library_module.cpp.in" "${source}" @ONLY)
  corvane_module(${name} SOURCES "${source}" LINKS ${MODULE_LINKS})
endfunction()
