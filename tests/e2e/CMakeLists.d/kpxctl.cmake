# kpxctl on queues of the real spooler.
kpx_add_test(NAME ctl_queues LIBS kpx_core nlohmann_json::nlohmann_json LABEL e2e SANDBOX full
  SOURCES e2e/ctl_queues_test.cpp)
