# What others pick up: both libraries with their public headers, the shared library that both need of
# the platform, the wordlex command, and the ways to find them (find_package, pkg-config).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Wordlex")

install(TARGETS wordlex localeid corefoundation EXPORT WordlexTargets FILE_SET HEADERS)

if(TARGET wordlex-tool)
  file(RELATIVE_PATH libraries
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(wordlex-tool PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS wordlex-tool EXPORT WordlexTargets)
  install(FILES tools/wordlex.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES "${PROJECT_BINARY_DIR}/tools/completions/wordlex.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME wordlex)
  install(FILES "${PROJECT_BINARY_DIR}/tools/completions/wordlex.zsh"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" RENAME _wordlex)
  install(FILES "${PROJECT_BINARY_DIR}/tools/completions/wordlex.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endif()

install(EXPORT WordlexTargets NAMESPACE Wordlex:: DESTINATION "${package_dir}")
configure_package_config_file(cmake/WordlexConfig.cmake.in WordlexConfig.cmake
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(WordlexConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES
    "${CMAKE_CURRENT_BINARY_DIR}/WordlexConfig.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/WordlexConfigVersion.cmake"
    cmake/WordlexCompile.cmake
  DESTINATION "${package_dir}")

# The prefix is found from the place of the file, so that an installed tree can be moved.
file(RELATIVE_PATH pkgconfig_to_prefix
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")

# install_pkgconfig(LIBRARY DESCRIPTION [LINKED...]): how pkg-config finds a static library and what
# it needs, LINKED included.
function(install_pkgconfig library description)
  get_target_property(platform_library corefoundation OUTPUT_NAME)
  list(JOIN ARGN " -l" more)
  if(more)
    string(PREPEND more " -l")
  endif()
  configure_file("${PROJECT_SOURCE_DIR}/cmake/library.pc.in" "${library}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${library}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endfunction()

# A header for C: its users' linker does not bring the C++ library along.
set(cxx_library ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER cxx_library INCLUDE REGEX "^(std)?c\\+\\+$")
install_pkgconfig(wordlex "Localization dictionaries and UTF-16 strings")
install_pkgconfig(localeid "Locale identifiers and the order of user-interface languages"
  ${cxx_library})
