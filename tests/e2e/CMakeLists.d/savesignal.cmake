# A save and a signal.
kpx_add_test(NAME admin_savesignal LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/admin_savesignal_test.cpp)
