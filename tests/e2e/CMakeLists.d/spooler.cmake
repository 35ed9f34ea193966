# The spooler bridge, and the sandbox itself.
kpx_add_test(NAME spooler_printing LABEL e2e SANDBOX full TIMEOUT 180
  SOURCES e2e/spooler_printing_test.cpp)
kpx_add_test(NAME spooler_failures LIBS kpx_core LABEL e2e SANDBOX full TIMEOUT 180
  SOURCES e2e/spooler_failures_test.cpp)
kpx_add_test(NAME spooler_commands LABEL e2e SANDBOX full TIMEOUT 180
  SOURCES e2e/spooler_commands_test.cpp)
