# The pages of the properties window, which are built when they are needed.
kpx_add_test(NAME gui_propertiespages LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/propertiespages_test.cpp support/guisupport.cpp)
# Random changes through the properties windows.
kpx_add_test(NAME gui_propertieswalk LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/propertieswalk_test.cpp support/propertieswalker.cpp support/guisupport.cpp)
