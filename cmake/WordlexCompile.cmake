# wordlex_compile(TARGET
#   OUTPUT file            the binary dictionary; a relative path is below the binary folder
#   SOURCES file...        text or binary dictionaries, merged in this order
#   [REFERENCE file]       the dictionary that the sources translate, to compare them with
#   [FAIL_ON severity]     the lowest severity of a finding that stops the build: error (the
#                          default) or warning
#   [DISABLE rule...]      rules of `wordlex check` to leave out
#   [OPTIONS option...])   more options of `wordlex compile`, such as --locale=de or --endian=big
#
# Makes a dictionary part of a build. Whenever a source has changed, `wordlex compile` checks the
# sources and compiles them to the binary dictionary. TARGET, a program, library or custom target of
# the calling folder, then depends on the dictionary. If there is no such target, it becomes a custom
# target that is built by default.
function(wordlex_compile target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT;REFERENCE;FAIL_ON" "SOURCES;DISABLE;OPTIONS")
  if(NOT arg_OUTPUT OR NOT arg_SOURCES OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "wordlex_compile(${target}): OUTPUT and SOURCES are needed; "
      "not known: \"${arg_UNPARSED_ARGUMENTS}\"")
  endif()
  if(NOT TARGET Wordlex::tool)
    message(FATAL_ERROR "wordlex_compile(${target}): the wordlex command is not part of this build")
  endif()

  set(check)
  if(arg_FAIL_ON)
    list(APPEND check "--fail-on=${arg_FAIL_ON}")
  endif()
  if(arg_REFERENCE)
    cmake_path(ABSOLUTE_PATH arg_REFERENCE)
    list(APPEND check "--reference=${arg_REFERENCE}")
  endif()
  list(TRANSFORM arg_DISABLE PREPEND --disable=)
  set(sources)
  foreach(source IN LISTS arg_SOURCES)
    cmake_path(ABSOLUTE_PATH source)
    list(APPEND sources "${source}")
  endforeach()
  cmake_path(ABSOLUTE_PATH arg_OUTPUT BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}")
  cmake_path(GET arg_OUTPUT PARENT_PATH folder)

  add_custom_command(
    OUTPUT "${arg_OUTPUT}"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${folder}"
    COMMAND Wordlex::tool compile ${check} ${arg_DISABLE} ${arg_OPTIONS} -o "${arg_OUTPUT}" ${sources}
    DEPENDS ${sources} ${arg_REFERENCE} Wordlex::tool
    COMMENT "Dictionary ${arg_OUTPUT}"
    VERBATIM)
  if(NOT TARGET ${target})
    add_custom_target(${target} ALL)
  endif()
  target_sources(${target} PRIVATE "${arg_OUTPUT}")
endfunction()
