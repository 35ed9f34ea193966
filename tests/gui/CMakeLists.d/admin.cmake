# Parts of the administration windows, inside the test program.
kpx_add_test(NAME gui_addresslookups LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/addresslookups_test.cpp)
kpx_add_test(NAME gui_admin_entries LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/admin_entries_test.cpp)
kpx_add_test(NAME gui_savewindow LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/savewindow_test.cpp)
