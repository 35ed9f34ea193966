# The Setup and Output tabs of the properties window, and what its OK refuses and stores.
kpx_add_test(NAME gui_setuptab LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/setuptab_test.cpp)
kpx_add_test(NAME gui_propertiesok LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/propertiesok_test.cpp)
