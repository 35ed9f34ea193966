# The modules with windows, inside the test program.
foreach(module listwidget combowidget pixmaps support messagedialogs toolwindow filesselection)
  kpx_add_test(NAME gui_${module} LIBS kpx_guisupport LABEL gui SANDBOX full
    SOURCES gui/${module}_test.cpp)
endforeach()
# On a display of scale 2.
kpx_add_test(NAME gui_pixmaps_scale LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/pixmaps_scale_test.cpp support/guisupport.cpp)
set_property(TEST gui_pixmaps_scale APPEND PROPERTY ENVIRONMENT GDK_SCALE=2 KPX_SCREEN=2560x2048)
