# The Options and Features tabs of the properties window.
kpx_add_test(NAME gui_optionstab LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/optionstab_test.cpp)
kpx_add_test(NAME gui_featurestab LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/featurestab_test.cpp)
