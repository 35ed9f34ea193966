// Printer descriptions that others wrote: every PPD of the hp-ppd and printer-driver-postscript-hp
// packages converts, loads, and says what libcups says about the same file. The other side of the
// comparison uses libcups by itself, none of the converter's code.
#include <gtest/gtest.h>
#include <iconv.h>
#include <sys/wait.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <set>

#include "cconstrain.h"
#include "cfeature.h"
#include "cprinter.h"
#include "filterrun.h"
#include "ghostscript.h"
#include "temporarydirectory.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

using Pair = std::pair<std::string, std::string>;  // feature with its asterisk, option

// `text` in another character set, nothing when it cannot be said in it.
std::optional<std::string> Recoded(const std::string &text, const char *to, const char *from) {
  iconv_t converter = iconv_open(to, from);
  std::string in = text;
  std::string out(text.size() * 4 + 4, '\0');
  char *in_at = in.data();
  char *out_at = out.data();
  size_t in_left = in.size();
  size_t out_left = out.size();
  const bool good = iconv(converter, &in_at, &in_left, &out_at, &out_left) != size_t(-1);
  iconv_close(converter);
  if (!good) return std::nullopt;
  out.resize(out.size() - out_left);
  return out;
}

// libcups reads a file that declares ISOLatin1 as that; many such files are UTF-8. Gives the text
// of the file itself, its line feeds as blanks.
std::string FileText(const char *libcups_text) {
  std::string text = libcups_text;
  const auto bytes = Recoded(text, "ISO-8859-1", "UTF-8");
  if (bytes && Recoded(*bytes, "UTF-8", "UTF-8")) text = *bytes;
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

// libcups cuts a text when its doubly encoded form is longer than its buffer.
bool SameText(const std::string &paf, const char *libcups_text) {
  if (std::string(libcups_text).size() < 75) return paf == FileText(libcups_text);
  std::string expected = FileText(libcups_text);
  return paf.starts_with(expected.substr(0, std::min<size_t>(expected.size(), 30)));
}

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const { ppdClose(ppd); }
};
using PpdFile = std::unique_ptr<ppd_file_t, ClosePpd>;

// One PPD file as libcups has it.
class LibcupsView {
 public:
  LibcupsView(const std::string &path, const std::string &content)
      : ppd_(ppdOpenFile(path.c_str())), content_(content) {
    for (int i = 0; ppd_ != nullptr && i < ppd_->num_groups; ++i) AddGroup(ppd_->groups[i], false);
  }

  const ppd_file_t *Ppd() const { return ppd_.get(); }
  const std::vector<const ppd_option_t *> &Ordinary() const { return ordinary_; }
  const std::vector<const ppd_option_t *> &Installable() const { return installable_; }

  // The choices of the file: libcups adds one named "Custom" where it knows custom values.
  std::vector<const ppd_choice_t *> Choices(const ppd_option_t &option) const {
    std::vector<const ppd_choice_t *> choices;
    for (int i = 0; i < option.num_choices; ++i) {
      const std::string name = option.choices[i].choice;
      if (name == "Custom" && !Defines("*" + std::string(option.keyword) + " Custom")) continue;
      choices.push_back(&option.choices[i]);
    }
    return choices;
  }

  std::set<std::pair<Pair, Pair>> ConstraintPairs() const {
    std::set<std::pair<Pair, Pair>> pairs;
    for (int i = 0; i < ppd_->num_consts; ++i) {
      const ppd_const_t &c = ppd_->consts[i];
      for (const Pair &a : Ends(c.option1, c.choice1)) {
        for (const Pair &b : Ends(c.option2, c.choice2)) {
          if (a != b) pairs.insert({std::min(a, b), std::max(a, b)});
        }
      }
    }
    return pairs;
  }

 private:
  void AddGroup(const ppd_group_t &group, bool installable) {
    installable = installable || std::string(group.name) == "InstallableOptions";
    for (int i = 0; i < group.num_options; ++i) {
      if (Choices(group.options[i]).empty()) continue;
      (installable ? installable_ : ordinary_).push_back(&group.options[i]);
    }
    for (int i = 0; i < group.num_subgroups; ++i) AddGroup(group.subgroups[i], installable);
  }

  bool Defines(const std::string &start) const {
    for (const char *end : {"/", ":"}) {
      if (content_.find("\n" + start + end) != std::string::npos) return true;
    }
    return false;
  }

  std::vector<Pair> Ends(const std::string &keyword, const std::string &choice) const {
    std::vector<Pair> ends;
    const ppd_option_t *option = ppdFindOption(ppd_.get(), keyword.c_str());
    if (option == nullptr && keyword.starts_with("Custom") && Defines("*" + keyword + " True")) {
      return {{"*" + keyword, "True"}};
    }
    if (option == nullptr) return {};
    for (const ppd_choice_t *each : Choices(*option)) {
      const std::string name = each->choice;
      const bool off = name == "None" || name == "False" || name == "Off";
      if (choice.empty()
              ? !off
              : ppdFindChoice(const_cast<ppd_option_t *>(option), choice.c_str()) == each) {
        ends.emplace_back("*" + std::string(option->keyword), name);
      }
    }
    return ends;
  }

  PpdFile ppd_;
  const std::string &content_;
  std::vector<const ppd_option_t *> ordinary_, installable_;
};

std::string Value(const CString *text) { return fGet_CString_Value_Function(text); }

void ExpectFeatures(const LibcupsView &view, const std::vector<const ppd_option_t *> &options,
                    const CHash *features) {
  size_t count = 0;
  for ([[maybe_unused]] const auto entry : Pairs<CFeature>(features)) ++count;
  EXPECT_EQ(count, options.size());
  for (const ppd_option_t *option : options) {
    SCOPED_TRACE(option->keyword);
    const CFeature *feature =
        HashValue<CFeature>(features, ("*" + std::string(option->keyword)).c_str());
    ASSERT_NE(feature, nullptr);
    EXPECT_TRUE(SameText(Value(feature->translation.get()), option->text)) << option->text;
    const char *types[] = {"Boolean", "PickOne", "PickMany"};
    EXPECT_EQ(Value(feature->type.get()), types[option->ui]);
    const auto choices = view.Choices(*option);
    const auto preset = std::find_if(choices.begin(), choices.end(), [&](const auto *choice) {
      return std::string(choice->choice) == option->defchoice;
    });
    EXPECT_EQ(Value(feature->default_option.get()),
              (preset == choices.end() ? choices.front() : *preset)->choice);
    size_t option_count = 0;
    for ([[maybe_unused]] const auto entry : Pairs<CString>(feature->options.get())) ++option_count;
    EXPECT_EQ(option_count, choices.size());
    for (const ppd_choice_t *choice : choices) {
      const char *text = HashText(feature->options.get(), choice->choice);
      ASSERT_NE(text, nullptr) << choice->choice;
      EXPECT_TRUE(SameText(text, choice->text)) << choice->choice << ": " << text;
    }
  }
}

void ExpectConstraints(const LibcupsView &view, const CPrinter *printer) {
  std::set<std::pair<Pair, Pair>> pairs;
  size_t count = 0;
  for (const CConstrain *c : Elements<CConstrain>(printer->constraints.get())) {
    const Pair a(Value(c->feature1.get()), Value(c->option1.get()));
    const Pair b(Value(c->feature2.get()), Value(c->option2.get()));
    pairs.insert({std::min(a, b), std::max(a, b)});
    ++count;
  }
  EXPECT_EQ(count, pairs.size()) << "a pair is written twice";
  const auto expected = view.ConstraintPairs();
  EXPECT_EQ(pairs.size(), expected.size());
  EXPECT_TRUE(pairs == expected);
}

void ExpectCustomLimits(const LibcupsView &view, const CPrinter *printer) {
  ASSERT_EQ(printer->custom_paper != nullptr, view.Ppd()->variable_sizes != 0);
  if (printer->custom_paper == nullptr) return;
  const auto near = [&](const char *key, float limit) {
    const char *text = HashText(printer->custom_paper.get(), key);
    ASSERT_NE(text, nullptr) << key;
    EXPECT_NEAR(std::strtod(text, nullptr), static_cast<double>(limit), 0.001) << key;
  };
  near("MinWidth", view.Ppd()->custom_min[0]);
  near("MaxWidth", view.Ppd()->custom_max[0]);
  near("MinLength", view.Ppd()->custom_min[1]);
  near("MaxLength", view.Ppd()->custom_max[1]);
}

void ExpectAgreement(const std::string &name, const LibcupsView &view, CPrinter *printer,
                     const std::string &printer_name) {
  const std::string nick = FileText(view.Ppd()->nickname);
  EXPECT_EQ(printer_name, nick.substr(0, nick.find(':')));
  EXPECT_EQ(Value(printer->ppd_file.get()), name);
  ExpectFeatures(view, view.Ordinary(), printer->features.get());
  ExpectFeatures(view, view.Installable(), printer->installable_options.get());
  ExpectConstraints(view, printer);
  ExpectCustomLimits(view, printer);
}

// Removes what is left of values whose heads are missing, at which libcups refuses the file.
std::string WithoutStrayLines(std::string content) {
  const std::string stray = "\n@PJL SET HOLDTYPE = PRIVATE\"\n*End";
  const std::string behind = "\n*HPOneCopyOfGuidePage: True";
  const size_t at = content.find(behind);
  if (at == std::string::npos) return content;
  while (content.compare(at + behind.size(), stray.size(), stray) == 0) {
    content.erase(at + behind.size(), stray.size());
  }
  return content;
}

// A process under AddressSanitizer takes its time to start: there every fifth file has to do.
#ifdef __SANITIZE_ADDRESS__
constexpr size_t kStep = 5;
#else
constexpr size_t kStep = 1;
#endif

class Corpus : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    directory_ = std::make_unique<TemporaryDirectory>();
    const std::string unpack = std::string("python3 ") + KPX_TEST_DATA +
                               "/support/extract_ppds.py /usr/lib/cups/driver/postscript-hp " +
                               directory_->Path();
    ASSERT_EQ(std::system(unpack.c_str()), 0);
    for (const char *folder : {"/usr/share/ppd/hp-ppd/HP", directory_->Path().c_str()}) {
      for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".ppd") files_.push_back(entry.path());
      }
    }
    std::sort(files_.begin(), files_.end());
  }
  static void TearDownTestSuite() { directory_.reset(); }

  static inline std::unique_ptr<TemporaryDirectory> directory_;
  static inline std::vector<std::string> files_;
};

TEST_F(Corpus, EveryDescriptionConvertsLoadsAndAgreesWithLibcups) {
  ASSERT_GE(files_.size(), 480u) << "the packages' PPD files are not there";
  const TemporaryDirectory out;
  size_t repaired = 0;
  for (size_t i = 0; i < files_.size(); i += kStep) {
    const std::string &path = files_[i];
    SCOPED_TRACE(path);
    const std::string name = std::filesystem::path(path).filename();
    const std::string paf = out.Path(name + ".paf");
    const FilterRun run = Convert(path, paf);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output + run.errors, "");

    const Owned<CPrinter> printer = CreatePrinter(paf.c_str());
    const Owned<CString> printer_name = fFillFromPaf_Function(printer.get());
    std::string content = ContentOf(path);
    std::string readable = path;
    if (PpdFile(ppdOpenFile(path.c_str())) == nullptr) {
      ++repaired;
      content = WithoutStrayLines(content);
      readable = out.Write("readable.ppd", content);
    }
    const LibcupsView view(readable, content);
    ASSERT_NE(view.Ppd(), nullptr);
    ExpectAgreement(name, view, printer.get(), Value(printer_name.get()));
    if (HasFailure()) return;
  }
  EXPECT_LE(repaired, 1u) << "files that libcups does not read as they are";
}

TEST_F(Corpus, TheOptionsOfOtherMakersLeaveTheJobsPagesAlone) {
  const std::string job =
      "%!PS-Adobe-3.0\n%%Pages: 2\n%%EndComments\n%%BeginProlog\n%%EndProlog\n%%BeginSetup\n"
      "%%EndSetup\n%%Page: 1 1\n9 9 99 99 rectfill showpage\n%%Page: 2 2\nshowpage\n%%EOF\n";
  for (size_t i = 0; i < files_.size(); i += 16) {
    SCOPED_TRACE(files_[i]);
    FilterCall call;
    call.options = "*NrCopies=2";
    call.ppd_file = files_[i];
    const FilterRun run = Filter(call, job);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    const Rendering rendering = Render(run.output);
    EXPECT_EQ(rendering.status, 0);
    EXPECT_EQ(rendering.messages, "");
    EXPECT_EQ(rendering.pages.size(), 4u);
  }
}

}  // namespace
