# The tables that the programs and the build read.

# The spooler's names of the printer models. Their descriptions are called so with a "1" behind.
set(KPX_MODEL_TABLE ${CMAKE_CURRENT_LIST_DIR}/../src/printermodels.inc)
# The directory of the texts, one language a sub-directory, and its table of languages.
set(KPX_NLS_DIR ${CMAKE_CURRENT_LIST_DIR}/../data/nls CACHE PATH "texts of the languages")
set(KPX_LANGUAGE_TABLE ${KPX_NLS_DIR}/languages.inc)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${KPX_MODEL_TABLE}
             ${KPX_LANGUAGE_TABLE})
foreach(table MODEL LANGUAGE)
  file(STRINGS ${KPX_${table}_TABLE} KPX_${table}_ROWS REGEX "^{\"")
endforeach()
set(KPX_PRINTER_MODELS ${KPX_MODEL_ROWS})
list(TRANSFORM KPX_PRINTER_MODELS REPLACE "^{\"[^\"]*\", \"([^\"]*)\".*" "\\1")
# The languages beside English, by their directories.
set(KPX_LANGUAGES ${KPX_LANGUAGE_ROWS})
list(TRANSFORM KPX_LANGUAGES REPLACE "^{\"([^\"]*)\".*" "\\1")
