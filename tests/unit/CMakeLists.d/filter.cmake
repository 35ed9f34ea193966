# The filter program: conversion and filtering.
kpx_add_test(NAME filter_conversion SOURCES unit/filter_ppd_test.cpp unit/filter_paf_test.cpp
             LIBS kpx_filter LABEL unit)
kpx_add_test(NAME filter_jobs LIBS kpx_filter LABEL unit
  SOURCES unit/jobrules_test.cpp unit/filter_settings_test.cpp unit/filter_kind_test.cpp unit/filter_postscript_test.cpp
          unit/filter_pdfpages_test.cpp unit/filter_pjl_test.cpp unit/filter_text_test.cpp unit/filter_textwords_test.cpp
          unit/filter_pages_test.cpp unit/filter_kept_test.cpp)
kpx_add_test(NAME filter_applications LIBS kpx_filter LABEL unit
  SOURCES unit/filter_words_test.cpp unit/filter_queueppd_test.cpp)
kpx_add_test(NAME filter_pdf SOURCES e2e/filter_pdf_test.cpp LIBS kpx_filterrun LABEL e2e)
kpx_add_test(NAME filter_pdfcorpus SOURCES e2e/filter_pdfcorpus_test.cpp LIBS kpx_filterrun LABEL e2e)
target_compile_definitions(test_filter_pdfcorpus PRIVATE
                           KPX_MAKEPDFS="${CMAKE_CURRENT_SOURCE_DIR}/support/makepdfs")
kpx_add_test(NAME filter_texttable SOURCES e2e/filter_texttable_test.cpp LIBS kpx_filterrun LABEL e2e)
foreach(name filter_applications filter_pdf filter_pdfcorpus filter_texttable)
  target_compile_definitions(test_${name} PRIVATE KPX_PPD_DIR="${CMAKE_BINARY_DIR}/data/ppds")
  add_dependencies(test_${name} kpx_data)
endforeach()
kpx_add_test(NAME filter_corpus SOURCES e2e/filter_corpus_test.cpp
             LIBS kpx_core kpx_filterrun Cups::Cups LABEL e2e)
foreach(kind layout program rendering streaming)
  kpx_add_test(NAME filter_${kind} SOURCES e2e/filter_${kind}_test.cpp
               LIBS kpx_filterrun LABEL e2e)
endforeach()
kpx_add_test(NAME filter_textcells SOURCES e2e/filter_textcells_test.cpp
             LIBS kpx_filter kpx_filterrun LABEL e2e)
foreach(name filter_corpus filter_layout filter_program filter_rendering filter_streaming filter_pdf filter_pdfcorpus
        filter_textcells
        filter_texttable)
  target_compile_definitions(test_${name} PRIVATE KPX_FILTER="$<TARGET_FILE:kpxfilter>")
  add_dependencies(test_${name} kpxfilter)
endforeach()
