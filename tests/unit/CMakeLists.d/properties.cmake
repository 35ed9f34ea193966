# The rules of the properties window.
kpx_add_test(NAME properties LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/properties_test.cpp)
