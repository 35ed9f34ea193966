# Queues in a real spooler, through the bridge.
kpx_add_test(NAME queue_creation LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/queue_creation_test.cpp)
