# The data that is installed beside the programs.
set(KPX_PPD_DIR ${CMAKE_BINARY_DIR}/data/ppds)
set(KPX_PAF_DIR ${CMAKE_BINARY_DIR}/data/pafs)

kpx_add_test(NAME data_messages SOURCES unit/data_messages_test.cpp LIBS kpx_core LABEL unit)
kpx_add_test(NAME data_help SOURCES unit/data_help_test.cpp LIBS kpx_core LABEL unit)
kpx_add_test(NAME data_manuals SOURCES unit/data_manuals_test.cpp LIBS kpx_core LABEL unit)
kpx_add_test(NAME data_fontmap SOURCES unit/data_fontmap_test.cpp LIBS kpx_core LABEL unit)
kpx_add_test(NAME data_ppd SOURCES unit/data_ppd_test.cpp LIBS kpx_core LABEL unit)
kpx_add_test(NAME data_paf SOURCES unit/data_paf_test.cpp LIBS kpx_core LABEL unit)
kpx_add_test(NAME data_installed SOURCES unit/data_installed_test.cpp LIBS kpx_core LABEL unit
  SANDBOX bare)
kpx_add_test(NAME data_translations SOURCES unit/data_translations_test.cpp LIBS kpx_core LABEL unit
  SANDBOX bare)
kpx_add_test(NAME data_typography SOURCES unit/data_typography_test.cpp LIBS kpx_core LABEL unit
  SANDBOX bare)
kpx_add_test(NAME data_glossary SOURCES unit/data_glossary_test.cpp LIBS kpx_core LABEL unit
  SANDBOX bare)
foreach(name data_translations data_typography data_glossary)
  target_compile_definitions(test_${name} PRIVATE KPX_PROJECT_VERSION="${PROJECT_VERSION}")
endforeach()
foreach(name data_fontmap data_ppd data_paf)
  target_compile_definitions(test_${name} PRIVATE KPX_PPD_DIR="${KPX_PPD_DIR}"
                             KPX_PAF_DIR="${KPX_PAF_DIR}")
  add_dependencies(test_${name} kpx_data)
endforeach()

foreach(model ${KPX_PRINTER_MODELS})
  add_test(NAME data_cupstestppd_${model}1 COMMAND cupstestppd -q ${KPX_PPD_DIR}/${model}1.ppd)
  set_tests_properties(data_cupstestppd_${model}1 PROPERTIES LABELS unit)
endforeach()
