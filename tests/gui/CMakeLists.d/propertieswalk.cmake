# The pages of the properties window, which are built when they are needed.
kpx_add_test(NAME gui_propertiespages LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/propertiespages_test.cpp)
# Random changes through the properties windows.
kpx_add_test(NAME gui_propertieswalk LIBS kpx_guisupport LABEL gui SANDBOX full
  SOURCES gui/propertieswalk_test.cpp support/propertieswalker.cpp)
# The longest one starts first, so that it is not alone at the end.
set_tests_properties(gui_propertieswalk PROPERTIES COST 300)
