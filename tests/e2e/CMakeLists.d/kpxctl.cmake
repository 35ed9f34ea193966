# kpxctl on queues of the real spooler.
foreach(part queues declared)
  kpx_add_test(NAME ctl_${part} LIBS kpx_core nlohmann_json::nlohmann_json LABEL e2e SANDBOX full
    SOURCES e2e/ctl_${part}_test.cpp)
endforeach()
kpx_add_test(NAME ctl_windows LIBS kpx_core nlohmann_json::nlohmann_json LABEL e2e SANDBOX full
  SOURCES e2e/ctl_windows_test.cpp support/adminsession.cpp)
