# Random changes through the properties windows.
kpx_add_test(NAME gui_propertieswalk LIBS kpx_gui kpx_guidriver LABEL gui SANDBOX full
  SOURCES gui/propertieswalk_test.cpp support/propertieswalker.cpp support/guisupport.cpp)
