# The Setup and Output tabs of the properties window, and what its OK refuses and stores.
kpx_add_test(NAME gui_setuptab LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/setuptab_test.cpp support/guisupport.cpp)
kpx_add_test(NAME gui_propertiesok LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/propertiesok_test.cpp support/guisupport.cpp)
