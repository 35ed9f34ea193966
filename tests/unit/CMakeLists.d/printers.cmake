# Printer descriptions: the records, the reader, the catalogue and the conversion.
kpx_add_test(NAME paf_reader LIBS kpx_core LABEL unit SOURCES unit/pafreader_test.cpp)
kpx_add_test(NAME printer_records LIBS kpx_core LABEL unit
  SOURCES unit/printerrecords_test.cpp unit/cprinter_test.cpp)
