// A queue that is shared with other hosts.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "changedfile.h"
#include "ghostscript.h"
#include "interfacescript.h"
#include "printedjobs.h"
#include "spooler.h"

inline constexpr char kOptions[] = "/opt/orlan/data/lp1.def";

// Another host reaches the scheduler through the sandbox's own network.
inline std::string SharingConfiguration() {
  std::string text = SchedulerConfiguration::Current();
  const std::string socket = "Listen /run/cups/cups.sock\n";
  return text.insert(text.find(socket) + socket.size(), "Listen *:631\nServerAlias *\n");
}

class Sharing : public testing::Test {
 protected:
  explicit Sharing(const std::string &configuration = SharingConfiguration())
      : configuration_(configuration), queue_("lp1") {
    std::filesystem::permissions(files_.Path(), std::filesystem::perms(0755));
    queue_.Append(InterfaceBlockText({.queue_type = "postscript",
                                      .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41201.ppd",
                                      .def_path = kOptions,
                                      .address = "127.0.0.1",
                                      .transport_parameter = "120"}));
    Run({"/usr/lib/kpxppd"});
    Run({"/usr/sbin/lpadmin", "-p", "lp1", "-o", "printer-is-shared=true"});
    text_ = files_.Write("page.txt", "a page of text\n");
    pdf_ = files_.Path("page.pdf");
    Run({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", "-o", pdf_,
         files_.Write("page.ps", "%!PS\n99 99 99 99 rectfill showpage 9 9 9 9 rectfill showpage")});
  }

  // Prints the text and the PDF document on the second host, after the commands `first`, which make
  // a queue "far" there; returns its result.
  CommandResult PrintAfar(const std::string &first) const {
    return RunProgram(
        {KPX_SECOND_HOST, "sh", "-c",
         first +
             // Its scheduler asks the printer in the background; until then it passes on what it
             // gets.
             "until lpoptions -p far | grep -q 'IPP Everywhere'; do sleep 0.1; done; for file in " +
             text_ + " " + pdf_ +
             "; do lp -d far -o sides=two-sided-long-edge -o finishings=20 $file || exit 1; done"});
  }

  // What came to the printer then is two-sided and stapled, of one page and of two.
  void ExpectBothPrinted(const CommandResult &second) {
    ASSERT_EQ(second.status, 0) << second.output;
    for (const size_t pages : {1u, 2u}) {
      const std::optional<std::string> job = printed_.Next();
      ASSERT_TRUE(job) << queue_.State() << second.output;
      EXPECT_NE(job->find("*Duplex DuplexNoTumble\n"), std::string::npos);
      EXPECT_NE(job->find("*StapleLocation SinglePortrait\n"), std::string::npos);
      const Rendering rendering = Render(*job);
      EXPECT_EQ(rendering.pages.size(), pages) << rendering.messages;
    }
  }

  static void Run(const std::vector<std::string> &command) {
    const CommandResult result = RunProgram(command);
    if (result.status != 0) throw std::runtime_error(command[0] + ": " + result.output);
  }

  const ChangedFile options_{kOptions, "*Duplex=None\n*OptionFinisher=True\n"};
  const SchedulerConfiguration configuration_;
  const TestQueue queue_;
  const TemporaryDirectory files_;
  std::string text_, pdf_;
  PrintedJobs printed_;
};
