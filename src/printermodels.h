// The printer models that the spooler has an interface for; printermodels.inc holds their rows.
#pragma once

#include <string_view>

#include "paths.h"

// The port on which the maker's printers take data.
inline constexpr int kMakersPort = 2501;
// The number of every model that the administrator has added: no picture is of that number.
inline constexpr int kAddedModelNumber = 100;

struct PrinterModel {
  const char *display_name;         // a printer is of this model when its name begins so
  const char *spooler_model;        // the spooler's name of the interface
  const char *ppd_file;             // bare file name; null when unknown
  const char *transport_parameter;  // third argument of the transport program; null when unknown
  int number;                       // by which windows and pictures tell it, from 1; 0 when unknown
  bool lists_resolutions;           // false: the list of resolutions is never filled anew
  bool defaults_set_resolution;     // whether Defaults of the Options tab resets the resolution
  bool has_punch_unit_pictures;     // whether a punching has a picture for each kind of unit
  // Models that the administrator has added differ in these, and are met by their whole name.
  const char *nls_dir = kNlsDir;  // its PPD file lies below the languages' directories in here
  const char *backend = "";       // of CUPS, which carries the data; empty: our own transport
  int port = kMakersPort;
};

// Has a model found, before the rows of the table and those that were added under its name before.
// Its texts must outlive the process's use of it.
void AddPrinterModel(const PrinterModel &model);

// The added model of exactly this name, else the first row that fits, or the row of all other
// printers.
const PrinterModel &FindPrinterModel(std::string_view printer_name);

// The row of this number, or the row of all other printers.
const PrinterModel &PrinterModelOfNumber(int number);
