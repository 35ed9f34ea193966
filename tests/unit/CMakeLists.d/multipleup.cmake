# Pages a sheet, and the picture of the printer.
kpx_add_test(NAME multiple_up LIBS kpx_core LABEL unit SOURCES unit/multipleup_test.cpp)
kpx_add_test(NAME printer_picture LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/printerpicturefiles_test.cpp)
