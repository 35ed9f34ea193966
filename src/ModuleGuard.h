// Keeps code that the caller names out of the administration, which runs as the superuser.
//
// GTK and the libraries below it load modules that the command line, the environment, settings and
// theme files, and the settings of the X server name. All of them are opened by GModule, whose
// functions for that this module replaces in the program (D-save-1).
#pragma once

// Before gtk_init: takes from the command line and the environment what names modules, and from
// then on lets GTK load only modules below the directory of GTK's own library. Other modules count
// as missing; GTK says so on standard error. `argv` keeps its null at the end.
void GuardModules(int *argc, char **argv);
