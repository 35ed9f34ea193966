# Parts of the administration windows, inside the test program.
kpx_add_test(NAME gui_admin_entries LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/admin_entries_test.cpp support/guisupport.cpp)
kpx_add_test(NAME gui_savewindow LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/savewindow_test.cpp support/guisupport.cpp)
