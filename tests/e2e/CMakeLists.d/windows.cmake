# The programs driven through their windows, from a key press to the bytes at the printer.
add_executable(makequeues support/makequeues.cpp)
target_link_libraries(makequeues PRIVATE kpx_core)

kpx_add_test(NAME startup LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/startup_test.cpp)
