# The object library, the texts, the log and the print tool's core.
kpx_add_test(NAME object_library LIBS kpx_core LABEL unit
  SOURCES unit/sharedtext_test.cpp unit/cstring_test.cpp unit/clist_test.cpp unit/chash_test.cpp
          unit/cselection_test.cpp)
kpx_add_test(NAME text_resources LIBS kpx_core LABEL unit
  SOURCES unit/textformat_test.cpp unit/textencoding_test.cpp unit/keyletters_test.cpp
          unit/cmessages_test.cpp
          unit/chelp_test.cpp)
kpx_add_test(NAME application_core LIBS kpx_core LABEL unit
  SOURCES unit/debug_test.cpp unit/language_test.cpp unit/globals_test.cpp
          unit/endprogram_test.cpp)
if(NOT KPX_SANITIZE)
  kpx_add_test(NAME allocation LIBS kpx_core LABEL unit SOURCES unit/allocation_test.cpp)
endif()
kpx_add_test(NAME file_helpers LIBS kpx_core LABEL unit
  SOURCES unit/utils_test.cpp unit/filesystem_test.cpp)
kpx_add_test(NAME print_tool_core LIBS kpx_core LABEL unit
  SOURCES unit/fontmap_test.cpp unit/filelist_test.cpp unit/printcommand_test.cpp
          unit/stdindata_test.cpp unit/command_test.cpp unit/waitingsettings_test.cpp
          support/faultinjection.cpp)
kpx_add_test(NAME installed_core LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/installed_core_test.cpp unit/printsettings_test.cpp
          unit/strangersfiles_test.cpp)
