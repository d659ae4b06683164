# cpack -G DEB makes three packages of an installation with shared libraries (preset `package`):
#   libwordlex5.1   the shared libraries
#   libwordlex-dev  what programs are built with
#   wordlex         the command
set(CPACK_PACKAGE_NAME wordlex)
set(CPACK_PACKAGE_VENDOR Norvale)
set(CPACK_PACKAGE_CONTACT "Norvale Wordlex maintainers <wordlex@norvale.example>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}.0")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "localization dictionaries for C++ programs")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL runtime development catalog tools)
set(CPACK_COMPONENT_RUNTIME_GROUP libraries)
set(CPACK_COMPONENT_DEVELOPMENT_GROUP headers)
set(CPACK_COMPONENT_CATALOG_GROUP headers)
set(CPACK_COMPONENT_TOOLS_GROUP command)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  "${PROJECT_BINARY_DIR}/host/CoreFoundation"
  "${PROJECT_BINARY_DIR}/wordlex"
  "${PROJECT_BINARY_DIR}/wordlex/catalog"
  "${PROJECT_BINARY_DIR}/localeid")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same_version "(= ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(what "Wordlex maps keys to localized texts. It looks texts up from any thread, fills
in values and plurals, and orders languages as the user prefers them.")

set(library_package "libwordlex${PROJECT_VERSION}")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME "${library_package}")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_DESCRIPTION "${what}

This package has the shared libraries.")
# The linker's cache is brought up to date once for all packages.
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/triggers")

set(CPACK_DEBIAN_HEADERS_PACKAGE_NAME libwordlex-dev)
set(CPACK_DEBIAN_HEADERS_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HEADERS_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_HEADERS_PACKAGE_DEPENDS "${library_package} ${same_version}")
set(CPACK_DEBIAN_HEADERS_PACKAGE_SUGGESTS wordlex)
set(CPACK_DEBIAN_HEADERS_DESCRIPTION "${what}

This package has the headers and the files for CMake and pkg-config.")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME wordlex)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "${library_package} ${same_version}")
set(CPACK_DEBIAN_COMMAND_DESCRIPTION "${what}

This package has the command, which checks and compiles dictionaries and
exchanges them with translators.")

# The documents that every package carries.
execute_process(
  COMMAND gzip -9nc "${CMAKE_CURRENT_LIST_DIR}/changelog"
  OUTPUT_FILE "${PROJECT_BINARY_DIR}/changelog.Debian.gz"
  COMMAND_ERROR_IS_FATAL ANY)
function(install_documents package component)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/deb/copyright"
    "${PROJECT_BINARY_DIR}/changelog.Debian.gz"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
endfunction()
install_documents("${library_package}" runtime)
install_documents(libwordlex-dev development)
install_documents(wordlex tools)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/CompressManual.cmake")

include(CPack)
