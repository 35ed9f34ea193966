# The rules of the destination and fonts tabs.
kpx_add_test(NAME destination_core LIBS kpx_core LABEL unit
  SOURCES unit/emailaddress_test.cpp unit/destination_test.cpp unit/textoptions_test.cpp)
