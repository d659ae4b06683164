# Settings shared by all targets: the language, the warnings, the project's root as include path.
# Link `house` PRIVATE into each target; only headers' own needs are passed on.

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

add_library(house INTERFACE)
target_compile_features(house INTERFACE cxx_std_20)
target_compile_options(house INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Woverloaded-virtual -Wnon-virtual-dtor>
  # With -O2 and more, g++ 12 mistakes `"text" + std::string` for a copy onto itself (GCC bug
  # 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${FRAMEWRIGHT_WERROR}>:-Werror>)

# house_library(NAME STATIC|SHARED SOURCES...): a library whose headers are included from the root.
function(house_library name kind)
  add_library(${name} ${kind} ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:house>)
endfunction()

# house_installed_library(NAME [FEATURE]): installs the library as Wordlex::NAME. With
# BUILD_SHARED_LIBS it is a shared library of the same objects, which exports only the symbols in
# NAME.map, beside the caller. Other targets of the project link with the static one, which has all
# symbols. FEATURE is the C++ standard that the headers need.
function(house_installed_library name)
  if(ARGN)
    target_compile_features(${name} INTERFACE ${ARGN})
  endif()
  if(NOT BUILD_SHARED_LIBS)
    add_library(Wordlex::${name} ALIAS ${name})
    return()
  endif()
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET default)
  get_target_property(libraries ${name} LINK_LIBRARIES)
  get_target_property(output ${name} OUTPUT_NAME)
  if(NOT output)
    set(output ${name})
  endif()
  add_library(${name}-shared SHARED $<TARGET_OBJECTS:${name}>)
  add_library(Wordlex::${name} ALIAS ${name}-shared)
  target_include_directories(${name}-shared INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
  if(ARGN)
    target_compile_features(${name}-shared INTERFACE ${ARGN})
  endif()
  target_link_libraries(${name}-shared PRIVATE ${libraries})
  set(map "${CMAKE_CURRENT_SOURCE_DIR}/${name}.map")
  target_link_options(${name}-shared PRIVATE
    "LINKER:--exclude-libs,ALL" "LINKER:--version-script=${map}")
  set_target_properties(${name}-shared PROPERTIES
    LINKER_LANGUAGE CXX
    LINK_DEPENDS "${map}"
    OUTPUT_NAME ${output}
    EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION})
endfunction()

# house_executable(NAME SOURCES...): a program of the project.
function(house_executable name)
  add_executable(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE house)
endfunction()
