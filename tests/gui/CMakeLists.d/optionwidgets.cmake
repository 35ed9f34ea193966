# The option combos and the lists of installable options, on the installed printers.
foreach(module optioncombos optionchoices installablelists)
  kpx_add_test(NAME gui_${module} LIBS kpx_guisupport LABEL gui SANDBOX full
    SOURCES gui/${module}_test.cpp)
endforeach()
