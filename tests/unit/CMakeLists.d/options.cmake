# The option logic: lists, constraints, changes, pictures' names, installable options.
kpx_add_test(NAME options LIBS kpx_core LABEL unit
  SOURCES unit/featuretable_test.cpp unit/constraints_test.cpp unit/constraintmessages_test.cpp
          unit/optionlists_test.cpp
          unit/optionchange_test.cpp unit/installables_test.cpp)
kpx_add_test(NAME pixmap_names LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/pixmapnames_test.cpp)
kpx_add_test(NAME constraints_property LIBS kpx_core LABEL unit
  SOURCES unit/constraints_property_test.cpp)
