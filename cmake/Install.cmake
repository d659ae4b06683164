# What others pick up: both libraries with their public headers, the host they run on, the wordlex
# command, and the ways to find them (find_package, pkg-config).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Wordlex")

install(TARGETS wordlex localeid host EXPORT WordlexTargets FILE_SET HEADERS)

if(TARGET wordlex-tool)
  file(RELATIVE_PATH libraries
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(wordlex-tool PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS wordlex-tool EXPORT WordlexTargets)
  install(FILES tools/wordlex.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES tools/wordlex.bash
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME wordlex)
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

# The prefix is told from the place of the file, so that an installed tree can be moved.
file(RELATIVE_PATH pkgconfig_to_prefix
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/wordlex.pc.in wordlex.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/wordlex.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
