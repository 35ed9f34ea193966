# The rules of the properties window.
kpx_add_test(NAME properties LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/properties_test.cpp)
# Presets of job settings: their file, at every fault of a disk, and their rules.
kpx_add_test(NAME presets LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/presetfile_test.cpp unit/presets_test.cpp support/faultinjection.cpp)
