# The Customs tab of the properties window and its dialogs.
kpx_add_test(NAME gui_customs LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/customstab_test.cpp gui/custompaper_test.cpp gui/custommedia_test.cpp)
