# The Options and Features tabs of the properties window.
kpx_add_test(NAME gui_optionstab LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/optionstab_test.cpp support/guisupport.cpp)
kpx_add_test(NAME gui_featurestab LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/featurestab_test.cpp support/guisupport.cpp)
