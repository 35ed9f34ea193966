# The modules with windows, inside the test program.
foreach(module listwidget combowidget pixmaps support messagedialogs toolwindow filesselection)
  kpx_add_test(NAME gui_${module} LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
    SOURCES gui/${module}_test.cpp support/guisupport.cpp)
endforeach()
