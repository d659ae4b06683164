# What every target of the house shares: the language, the warnings, the project's root as include
# path. Link `house` PRIVATE into each target; only headers' own needs are passed on.

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

add_library(house INTERFACE)
target_compile_features(house INTERFACE cxx_std_20)
target_compile_options(house INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Woverloaded-virtual -Wnon-virtual-dtor>
  # With -O2 and more g++ 12 takes `"text" + std::string` for a copy onto itself (GCC bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

# house_library(NAME STATIC|SHARED SOURCES...): a library of the house, headers found from the root.
function(house_library name kind)
  add_library(${name} ${kind} ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:house>)
endfunction()

# house_executable(NAME SOURCES...): a program of the house.
function(house_executable name)
  add_executable(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE house)
endfunction()
