# The properties window of both programs.
kpx_add_test(NAME properties_admin LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/properties_admin_test.cpp)
