# Debian keeps manual pages compressed. Runs on the files that go into the packages.
file(GLOB_RECURSE pages "${CPACK_TEMPORARY_DIRECTORY}/wordlex.1")
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip -9n "${page}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
