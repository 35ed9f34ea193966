// kpxctl preset: the caller's presets of job settings, for the queues of the real spooler.
#include <fstream>

#include "ctltest.h"

namespace {

using Strings = std::vector<std::string>;

class CtlPresets : public CtlTest {
 protected:
  CtlPresets() { setenv("XDG_CONFIG_HOME", directory_.Path("config").c_str(), 1); }
  ~CtlPresets() override { unsetenv("XDG_CONFIG_HOME"); }

  std::string File(const std::string &text) const { return directory_.Write("file", text); }
  std::string Path() const { return directory_.Path("config/kpx/presets"); }

  TemporaryDirectory directory_;
};

constexpr char kTwo[] = "[Both sides]\n*Duplex=DuplexTumble\n*NrCopies=2\n[Slides]\n*Nup=4\n";

TEST_F(CtlPresets, AreImportedListedShownExportedAndDeleted) {
  Expect({"preset", "list"}, CatalogueText("CTL_PRESET_NONE") + "\n");
  Expect({"preset", "import", File(kTwo)}, "+ Both sides\n+ Slides\n");
  Expect({"preset", "list"}, "Both sides  Duplex=DuplexTumble, NrCopies=2\nSlides      Nup=4\n");
  Expect({"preset", "show", "Slides", "Both sides"},
         "Slides\n  Nup=4\nBoth sides\n  Duplex=DuplexTumble\n  NrCopies=2\n");
  EXPECT_EQ(nlohmann::json::parse(R"([{"name": "Both sides",
      "settings": {"Duplex": "DuplexTumble", "NrCopies": "2"}},
      {"name": "Slides", "settings": {"Nup": "4"}}])"),
            JsonOf({"preset", "list"}));
  const std::string copy = directory_.Path("copy");
  Expect({"preset", "export", copy}, "");
  EXPECT_EQ(ContentOf(Path()), ContentOf(copy));
  Expect({"preset", "export"}, ContentOf(copy));
  Expect({"preset", "import", copy}, CatalogueText("CTL_NOTHING_TO_DO") + "\n");
  Expect({"preset", "import", File("[Slides]\n*Nup=2\n")}, "~ Slides\n");
  Expect({"preset", "delete", "Both sides"}, "- Both sides\n");
  Expect({"preset", "list"}, "Slides  Nup=2\n");
}

TEST_F(CtlPresets, OfAQueueAreThoseThatItHasAllFor) {
  AddQueue("acc1");
  AddQueue("lab1", {"--type", "text", "OptionFinisher=True"});
  Expect({"preset", "import", File(kTwo)}, "+ Both sides\n+ Slides\n");
  const std::string draft = CatalogueText("PRESET_DRAFT");
  Expect({"preset", "list", "--queue", "acc1"},
         draft + "       OutputMode=Draft, Resolution=300dpi\n" +
             "Both sides  Duplex=DuplexTumble, NrCopies=2\n");
  Strings names;
  for (const auto &preset : JsonOf({"preset", "list", "--queue", "lab1"})) {
    names.push_back(preset["name"]);
  }
  EXPECT_EQ((Strings{draft, CatalogueText("PRESET_HANDOUT"), "Both sides", "Slides"}), names);
  Expect({"preset", "show", "Slides", "--queue", "acc1"},
         "Slides\n  Nup=4\n  ! " + CatalogueText("PRESET_PAGES_LACKING") + "\n");
  const nlohmann::json shown = JsonOf({"preset", "show", "Slides", draft, "--queue", "acc1"});
  EXPECT_EQ(CatalogueText("PRESET_PAGES_LACKING"), shown[0]["conflict"]);
  EXPECT_EQ(true, shown[1]["built-in"]);
  ExpectRefused({"preset", "list", "--queue", "acc9"}, 1,
                CatalogueText("CTL_QUEUE_UNKNOWN", {"acc9"}));
}

// A name that is the program's in one language can be the user's own in another.
TEST_F(CtlPresets, OfTheUserComeBeforeThoseOfTheProgramOfThatName) {
  AddQueue("acc1");
  const std::string draft = CatalogueText("PRESET_DRAFT");
  const CommandResult imported =
      RunProgram({"/usr/bin/env", "LANG=de_DE.UTF-8", "/usr/sbin/kpxctl", "preset", "import",
                  File("[" + draft + "]\n*NrCopies=3\n")});
  ASSERT_EQ(0, imported.status) << imported.output;
  Expect({"preset", "show", draft, "--queue", "acc1"}, draft + "\n  NrCopies=3\n");
}

TEST_F(CtlPresets, AreAsTheyWereWhenSomethingIsWrong) {
  Expect({"preset", "import", File(kTwo)}, "+ Both sides\n+ Slides\n");
  const std::string before = ContentOf(Path());
  const std::string file = File("[A]\n*Duplex=None\n[B]\n*DeliveryPIN=1234\n");
  ExpectRefused({"preset", "import", file}, 1,
                file + ":4: " + CatalogueText("PRESET_KEY_BAD", {"*DeliveryPIN"}));
  ExpectRefused({"preset", "import", File("[Draft]\n*Duplex=None\n")}, 1,
                file + ": " + CatalogueText("PRESET_NAME_OWN", {"Draft"}));
  ExpectRefused({"preset", "import", directory_.Path("none")}, 1,
                CatalogueText("ERR_UNABLE_TO_READ_FILE", {directory_.Path("none")}));
  ExpectRefused({"preset", "delete", "Slides", "None"}, 1,
                CatalogueText("CTL_PRESET_UNKNOWN", {"None"}));
  ExpectRefused({"preset", "show", "None"}, 1, CatalogueText("CTL_PRESET_UNKNOWN", {"None"}));
  EXPECT_EQ(2, Kpxctl({"preset", "delete"}).status);
  EXPECT_EQ(before, ContentOf(Path()));
  std::ofstream(Path()) << "[A]\n";
  const std::string fault = FormatMessage(CatalogueText("PRESETS_LINE"),
                                          {Path(), 1, CatalogueText("PRESET_EMPTY", {"A"})});
  for (const Strings &words :
       {Strings{"list"}, {"show", "A"}, {"export"}, {"delete", "A"}, {"import", File(kTwo)}}) {
    Strings call = {"preset"};
    call.insert(call.end(), words.begin(), words.end());
    ExpectRefused(call, 1, fault);
  }
  EXPECT_EQ("[A]\n", ContentOf(Path()));
}

TEST_F(CtlPresets, AreEveryUsersOwn) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "not root";
  unsetenv("XDG_CONFIG_HOME");
  const CommandResult result =
      RunProgram({"sh", "-c",
                  "HOME=$(mktemp -d) && export HOME && /usr/sbin/kpxctl preset import - && "
                  "/usr/sbin/kpxctl preset list && stat -c %U:%a \"$HOME/.config/kpx/presets\""},
                 "[Slides]\n*Nup=4\n", "anna");
  EXPECT_EQ("+ Slides\nSlides  Nup=4\nanna:600\n", result.output);
  EXPECT_EQ(0, result.status);
}

}  // namespace
