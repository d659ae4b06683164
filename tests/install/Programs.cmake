add_executable(greeting ../Greeting.cpp)
target_link_libraries(greeting PRIVATE Wordlex::wordlex)
add_executable(languages ../Languages.c)
target_link_libraries(languages PRIVATE Wordlex::localeid)
