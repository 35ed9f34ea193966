// A queue as print dialogs and lp see it, and documents to print on it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "changedfile.h"
#include "interfacescript.h"
#include "printedjobs.h"
#include "spooler.h"

inline constexpr char kOptions[] = "/opt/orlan/data/lp1.def";
inline constexpr char kDescriptions[] = "/usr/lib/kpxppd";

// What a save writes into the interface script of a queue of this type.
inline std::string Block(const std::string &type) {
  return InterfaceBlockText({.queue_type = type,
                             .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41201.ppd",
                             .def_path = kOptions,
                             .address = "127.0.0.1",
                             .transport_parameter = "120"});
}

// PostScript of `pages` pages, each with its number.
inline std::string Pages(int pages) {
  std::string text = "%!PS-Adobe-3.0\n%%Pages: " + std::to_string(pages) + "\n%%EndComments\n";
  for (int page = 1; page <= pages; ++page) {
    const std::string number = std::to_string(page);
    text += "%%Page: " + number + " " + number + "\n/Helvetica findfont 99 scalefont setfont " +
            "99 299 moveto (" + number + ") show showpage\n";
  }
  return text + "%%EOF\n";
}

class Applications : public testing::Test {
 protected:
  Applications() : queue_("lp1") {
    std::filesystem::permissions(files_.Path(), std::filesystem::perms(0755));
    ps_ = files_.Write("doc.ps", Pages(5));
    pdf_ = files_.Path("doc.pdf");
    png_ = files_.Path("picture.png");
    Run({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", "-o", pdf_, ps_});
    Run({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pnggray", "-r20", "-dLastPage=1",
         "-o", png_, ps_});
  }

  static void Run(const std::vector<std::string> &command) {
    const CommandResult result = RunProgram(command);
    if (result.status != 0) throw std::runtime_error(command[0] + ": " + result.output);
  }

  // The queue as a save leaves it.
  void Describe(const std::string &type = "postscript") {
    queue_.Append(Block(type));
    Run({kDescriptions});
  }

  // The job as the printer gets it.
  std::string Printed(std::vector<std::string> arguments, const std::string &input = {}) {
    queue_.Print(arguments, input);
    const std::optional<std::string> job = printed_.Next();
    if (!job) throw std::runtime_error("nothing came to the printer: " + queue_.State());
    return *job;
  }

  // Prints `document` as a client of the Internet Printing Protocol; `attributes` are those of the
  // job, as ipptool takes them.
  void PrintByIpp(const std::string &attributes, const std::string &document) {
    const std::string request =
        "{ OPERATION Print-Job GROUP operation-attributes-tag\n"
        "ATTR charset attributes-charset utf-8 ATTR language attributes-natural-language en\n"
        "ATTR uri printer-uri $uri ATTR mimeMediaType document-format application/octet-stream\n"
        "GROUP job-attributes-tag " +
        attributes + "\nFILE $filename STATUS successful-ok }\n";
    Run({"ipptool", "-tf", document, "ipp://%2Frun%2Fcups%2Fcups.sock/printers/" + queue_.name(),
         files_.Write("job.test", request)});
  }

  const TestQueue queue_;
  const TemporaryDirectory files_;
  std::string ps_, pdf_, png_;
  const ChangedFile options_{kOptions, "*Duplex=None\n*OptionFinisher=True\n"};
  PrintedJobs printed_;
};
