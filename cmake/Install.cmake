# The installation, in components that can be installed alone (cmake --install ... --component):
#   runtime      the shared libraries that programs need to run
#   development  for wordlex and localeid: headers, libraries to link, files for find_package and
#                pkg-config
#   catalog      the same for the catalog, which also needs development
#   tools        the wordlex command with its manual page and completions
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Wordlex")

# The targets to install of libraries made by house_installed_library.
function(installed_targets result)
  set(targets ${ARGN})
  if(BUILD_SHARED_LIBS)
    list(TRANSFORM targets APPEND "-shared")
  endif()
  set(${result} ${targets} PARENT_SCOPE)
endfunction()

# install_libraries(EXPORT RUNTIME DEVELOPMENT targets...): into the two components.
function(install_libraries export runtime development)
  install(TARGETS ${ARGN} EXPORT ${export}
    LIBRARY
      DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT ${runtime} NAMELINK_COMPONENT ${development}
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${development}
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
  install(EXPORT ${export} NAMESPACE Wordlex:: DESTINATION "${package_dir}"
    COMPONENT ${development})
endfunction()

# install_headers(COMPONENT files...): headers keep their place below the project's root.
function(install_headers component)
  foreach(header IN LISTS ARGN)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}"
      DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}" COMPONENT ${component})
  endforeach()
endfunction()

# The prefix is found from the place of the file, so an installed tree can be moved.
file(RELATIVE_PATH pkgconfig_to_prefix
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
get_target_property(platform_library corefoundation OUTPUT_NAME)

# install_pkgconfig(LIBRARY COMPONENT DESCRIPTION [PRIVATE_LIBRARIES]): the file for pkg-config. A
# static library needs its private libraries named as well.
function(install_pkgconfig library component description)
  set(libraries "-l${library}")
  set(private_libraries "${ARGN} -l${platform_library}")
  if(NOT BUILD_SHARED_LIBS)
    string(APPEND libraries " ${private_libraries}")
    set(private_libraries "")
  endif()
  configure_file("${PROJECT_SOURCE_DIR}/cmake/library.pc.in" "${library}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${library}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endfunction()

# Users of a header for C do not link with the C++ library by themselves.
set(cxx_library ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER cxx_library INCLUDE REGEX "^(std)?c\\+\\+$")
list(TRANSFORM cxx_library PREPEND "-l")

installed_targets(libraries wordlex localeid)
install_libraries(WordlexTargets runtime development ${libraries} corefoundation)
install_headers(development
  wordlex/staticlib/Wordlexlib.h
  localeid/LocaleId.h localeid/LocaleList.h localeid/MuiLib.h)
install_pkgconfig(wordlex development "Localization dictionaries and UTF-16 strings")
install_pkgconfig(localeid development
  "Locale identifiers and the order of user-interface languages" ${cxx_library})

configure_package_config_file(cmake/WordlexConfig.cmake.in WordlexConfig.cmake
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(WordlexConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES
    "${CMAKE_CURRENT_BINARY_DIR}/WordlexConfig.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/WordlexConfigVersion.cmake"
  DESTINATION "${package_dir}" COMPONENT development)

if(TARGET catalog)
  installed_targets(libraries catalog)
  install_libraries(WordlexCatalogTargets runtime catalog ${libraries})
  install_headers(catalog wordlex/catalog/Catalog.h wordlex/catalog/wordlex.h)
  install_pkgconfig(wordlexcatalog catalog "Localized texts for programs of today"
    "-lwordlex -llocaleid -licui18n -licuuc -pthread")
endif()

if(TARGET wordlex-tool)
  file(RELATIVE_PATH libraries
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  # The system finds files in its own folders; other files are found from the command.
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set_target_properties(wordlex-tool PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  endif()
  install(TARGETS wordlex-tool EXPORT WordlexToolTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  install(EXPORT WordlexToolTargets NAMESPACE Wordlex:: DESTINATION "${package_dir}"
    COMPONENT tools)
  install(FILES cmake/WordlexCompile.cmake DESTINATION "${package_dir}" COMPONENT tools)
  install(FILES tools/wordlex.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
  set(completions "${PROJECT_BINARY_DIR}/tools/completions")
  install(FILES "${completions}/wordlex.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME wordlex
    COMPONENT tools)
  install(FILES "${completions}/wordlex.zsh"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" RENAME _wordlex COMPONENT tools)
  install(FILES "${completions}/wordlex.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT tools)
endif()

# Removes what the last cmake --install of this build tree wrote.
add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -D "BINARY_DIR=${PROJECT_BINARY_DIR}"
    -P "${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake"
  VERBATIM)
