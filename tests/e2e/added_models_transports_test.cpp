// Models that take their data by LPD or IPP: a job arrives once, and faults are told in plain
// words.
#include <gtest/gtest.h>

#include <fstream>

#include "models.h"
#include "privateworld.h"

namespace fs = std::filesystem;

namespace {

constexpr char kBackend[] = "/opt/orlan/bin/kpxbackend";

class Transports : public testing::Test {
 protected:
  Transports() {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
  }
};

// For its lifetime CUPS's backend is a program that says and does what it is told.
class StandInBackend {
 public:
  StandInBackend(const std::string &says, int status) : before_(ContentOf(kPath)) {
    fs::remove(kPath);
    std::ofstream(kPath) << "#!/bin/sh\ncat >/dev/null\ncat >&2 <<'EOF'\n"
                         << says << "EOF\nexit " << status << "\n";
    fs::permissions(kPath, fs::perms(0755));
  }
  ~StandInBackend() {
    std::ofstream(kPath) << before_;
    fs::permissions(kPath, fs::perms(0755));
  }
  StandInBackend(const StandInBackend &) = delete;
  StandInBackend &operator=(const StandInBackend &) = delete;

 private:
  static constexpr char kPath[] = "/usr/lib/cups/backend/ipp";
  std::string before_;
};

TEST_F(Transports, FaultsHaveOurStatusesAndWords) {
  struct Row {
    std::string says;
    int backend_status;
    int status;
    std::string words;
  };
  for (const Row &row :
       std::vector<Row>{{"INFO: Printing page 1\n", 0, 0, "kpxbackend: Printing page 1"},
                        {"STATE: +media-empty-error\nDEBUG: secret\n", 0, 0, "out of paper"},
                        {"STATE: +media-jam-error,cover-open\n", 4, 129, "paper is jammed"},
                        {"STATE: +connecting-to-device\n", 1, 75, "took nothing of the job"},
                        {"STATE: +connecting-to-device\nSTATE: -connecting-to-device\n", 1, 76,
                         "may have been printed"},
                        {"ERROR: Try again later\n", 6, 75, "Try again later"},
                        {"", 7, 75, "took nothing of the job"},
                        {"", 2, 76, "a user name and a password"},
                        {"", 3, 76, "may have been printed"}}) {
    const StandInBackend backend(row.says, row.backend_status);
    const CommandResult result = RunProgram({kBackend, "printer.example", "631", "ipp"}, "data");
    EXPECT_EQ(result.status, row.status) << row.says << result.output;
    EXPECT_NE(result.output.find(row.words), std::string::npos) << row.says << result.output;
    EXPECT_EQ(result.output.find("secret"), std::string::npos) << result.output;
  }
  for (const std::vector<std::string> &words : {std::vector<std::string>{kBackend},
                                                {kBackend, "host", "631", "pigeon"},
                                                {kBackend, "host", "many", "ipp"},
                                                {kBackend, "", "631", "ipp"}}) {
    EXPECT_EQ(RunProgram(words, "data").status, 64);
  }
}

}  // namespace
