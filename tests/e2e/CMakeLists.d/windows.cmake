# The programs driven through their windows, from a key press to the bytes at the printer.
add_executable(makequeues support/makequeues.cpp)
target_link_libraries(makequeues PRIVATE kpx_core)
