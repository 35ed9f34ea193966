// The printer models that the administrator has added (kpxctl model): their table, one file a
// model, and where their files lie. Nothing of a package lies there, so no upgrade overwrites them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chash.h"
#include "clist.h"

// What the identifiers of added models begin with: no shipped model's name does.
inline constexpr char kAddedModelPrefix[] = "ppd-";

// The transport that a model has unless another is named, and our own: the others ("lpd", "ipp",
// "ipps") are backends of CUPS.
inline constexpr char kRawTransport[] = "raw";

// A row of the table. Texts are UTF-8.
struct AddedModel {
  std::string id = {};            // of its files and of the spooler's model: letters, digits, "-"
  std::string printer_name = {};  // as windows and queues name it
  std::string transport = kRawTransport;
  int port = 0;                             // 1 to 65535
  int pages_a_minute = 0;                   // at least 1
  std::vector<std::string> languages = {};  // that the printer takes ("PostScript", "PCL")
  std::string source = {};                  // where its PPD file came from
};

// The port that the transport uses unless another is named; 0 for an unknown transport.
[[nodiscard]] int DefaultPort(std::string_view transport);

// The content of a row's file.
std::string AddedModelText(const AddedModel &model);

// The row of that content; nothing when it lacks something, or says what cannot be.
[[nodiscard]] std::optional<AddedModel> AddedModelOf(const std::string &id, std::string_view text);

// An identifier for a printer of this name that none of `taken` has.
std::string NewModelId(std::string_view printer_name, const std::vector<std::string> &taken);

// Places of a model's files.
std::string AddedModelPath(const std::string &id);
std::string AddedModelSourcePath(const std::string &id);  // its PPD file as it came
std::string AddedModelPpdPath(const std::string &id, const std::string &language_directory);
std::string AddedModelPafPath(const std::string &id, const std::string &language_directory);
std::string AddedModelInterfacePath(const std::string &id);  // the spooler's model

// The language directories of the installation: "enu", "deu", "deu/utf8" and so on.
std::vector<std::string> LanguageDirectories();

// The table's rows, by identifier; none where the directory is not there. A file that is not a row
// is left out, and its identifier added to `bad` unless that is null.
std::vector<AddedModel> ReadAddedModels(std::vector<std::string> *bad = nullptr);

// Adds the models to the catalogue's `printers`, with their descriptions in the language (else in
// English), and has FindPrinterModel find them. A name that the catalogue has already stays the
// catalogue's. One that cannot be read is told in `messages` (may be null) and on standard error,
// and left out.
void LoadAddedModels(CHash *printers, const std::string &language_directory, CList *messages);
