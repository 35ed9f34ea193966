# Printer descriptions: the records, the reader, the catalogue and the conversion.
kpx_add_test(NAME paf_reader LIBS kpx_core LABEL unit SOURCES unit/pafreader_test.cpp)
kpx_add_test(NAME printer_records LIBS kpx_core LABEL unit
  SOURCES unit/printerrecords_test.cpp unit/cprinter_test.cpp)
kpx_add_test(NAME printer_catalogue LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/ppdconversion_test.cpp unit/cprinters_test.cpp)
add_executable(argumentrecorder support/argumentrecorder.cpp)
add_dependencies(test_printer_catalogue argumentrecorder)
target_compile_definitions(test_printer_catalogue PRIVATE
  KPX_ARGUMENT_RECORDER="$<TARGET_FILE:argumentrecorder>")
kpx_add_test(NAME records_memory LIBS kpx_core LABEL unit SOURCES unit/records_memory_test.cpp)
target_link_options(test_records_memory PRIVATE -Wl,--wrap=malloc)
