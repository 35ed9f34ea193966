# The Destination and Fonts tabs of the properties window.
foreach(tab destinationtab fontstab)
  kpx_add_test(NAME gui_${tab} LIBS kpx_guisupport LABEL gui SANDBOX full
    SOURCES gui/${tab}_test.cpp)
endforeach()
