# The pictures: the program that draws them, and what is installed.
kpx_add_test(NAME kpxdraw SOURCES unit/kpxdraw_test.cpp LIBS kpx_drawing LABEL unit)
list(JOIN KPX_PICTURE_DESCRIPTIONS ":" descriptions)
target_compile_definitions(test_kpxdraw PRIVATE KPX_DRAW="$<TARGET_FILE:kpxdraw>"
                           KPX_PICTURES="${descriptions}")
add_dependencies(test_kpxdraw kpxdraw)
kpx_add_test(NAME pictures SOURCES unit/pictures_test.cpp LIBS kpx_core PkgConfig::GTK3 LABEL unit
  SANDBOX bare)
