// Printers of many makers in the windows: PPD files drawn at random (always the same ones, those of
// the added models' corpus) are added and get queues. The administration opens the properties of
// each, every option is set once with the pointer and the keys, and what is saved is compared with
// what the window showed, read by libcups's words alone. The print tool then shows the same.
// KPX_LONG takes 300 files.
#include <algorithm>
#include <cstdio>
#include <set>

#include "everyoption.h"
#include "models.h"
#include "propertiesdriver.h"
#include "sampledppds.h"
#include "savedqueues.h"
#include "settingkeys.h"
#include "tooldriver.h"

namespace {

using Texts = std::vector<std::string>;

constexpr size_t kQueuesAStart = 10;

// What is installed comes first, as it lets other options be chosen.
const Texts kTabs = {"Features", "General",     "Setup",   "Output",
                     "Options",  "Destination", "Customs", "Fonts"};

struct SampledModel {
  std::string file;
  std::string name;  // of the model
  std::string queue;
  std::vector<MakersFeature> features;
  ShownSettings shown;  // when the window was left
  std::vector<EveryOption::Place> places;
};

struct Count {
  int windows = 0, features = 0, set = 0, conflicts = 0, tool_windows = 0;
};

// What the second shows otherwise than the first, in words; empty when nothing.
std::string Difference(const ShownSettings &one, const ShownSettings &two) {
  std::string words;
  for (const auto &[feature, text] : one.choices) {
    const auto other = two.choices.find(feature);
    if (other == two.choices.end()) {
      words += feature + " not at all; ";
    } else if (other->second != text) {
      words += feature + " as " + other->second + " instead of " + text + "; ";
    }
  }
  if (one.installed != two.installed) {
    words += "installed " + Listed(two.installed) + " instead of " + Listed(one.installed);
  }
  return words;
}

class MakersWindows : public RealSpoolerTest {
 protected:
  void AddModels(const Texts &files, std::vector<SampledModel> &models) {
    for (const std::string &file : files) {
      const std::string path = sample_.Path(file);
      const CommandResult added = Kpxctl({"model", "add", path, "--json"});
      if (added.status != 0) {
        Fault(file, "not added: " + added.output);
        continue;
      }
      SampledModel model{
          file, ValueIn(added.output, "name"), "q" + file.substr(0, 3), MakersFeaturesOf(path), {},
          {}};
      const CommandResult queue =
          Kpxctl({"add", model.queue, "--printer", model.name, "--address", "127.0.0.1"});
      if (queue.status != 0) Fault(file, "no queue: " + queue.output);
      models.push_back(model);
    }
  }

  void RemoveModels(const std::vector<SampledModel> &models) {
    for (const SampledModel &model : models) {
      EXPECT_EQ(Kpxctl({"delete", model.queue}).status, 0) << model.file;
      const CommandResult removed = Kpxctl({"model", "remove", model.name});
      EXPECT_EQ(removed.status, 0) << model.file << ": " << removed.output;
    }
  }

  void Fault(const std::string &file, const std::string &what) {
    std::printf("  %s: %s\n", file.c_str(), what.c_str());
    std::fflush(stdout);
    ++faults_;
  }

  bool SetAllIn(AdminApp &app, SampledModel &model) {
    EveryOption window(app, model.features, kTabs);
    const size_t number = std::stoul(model.file);
    window.SetAll(number % 2 == 0);
    const bool is_free = window.Apply();
    model.shown = window.Read();
    model.places = window.Places();
    if (window.Conflicts() == 0) {
      const ShownSettings chosen = {window.Chosen(), model.shown.installed};
      const std::string difference = Difference(chosen, model.shown);
      if (!difference.empty()) Fault(model.file, "chosen, but shown: " + difference);
    }
    for (const std::string &fault : window.Faults()) Fault(model.file, fault);
    for (const std::string &text : window.Clipped()) Fault(model.file, "cut: " + text);
    for (const std::string &text : window.Unresolved()) Fault(model.file, "not settled: " + text);
    ++count_.windows;
    count_.features += static_cast<int>(
        std::count_if(model.features.begin(), model.features.end(),
                      [](const MakersFeature &feature) { return feature.IsOffered(); }));
    count_.set += window.Set();
    count_.conflicts += window.Conflicts();
    return is_free;
  }

  void Administer(std::vector<SampledModel> &models) {
    AdminApp app;
    for (SampledModel &model : models) {
      app.TypeInto("SearchEntry", model.queue);
      SelectRowOf(app, "QueuesClist", model.queue);
      OpenProperties(app);
      PressProperties(app, SetAllIn(app, model) ? "OK" : "Cancel");
      app.WaitGone("PropertiesWindow");
      if (!app.Stderr().empty()) Fault(model.file, "stderr: " + app.Stderr());
    }
    Save(app);
  }

  // What is stored must be what the window showed.
  void CompareStored(const SampledModel &model) {
    std::map<std::string, std::string> stored;
    for (const std::string &line :
         SplitLines(ContentOf(std::string(kDataDir) + "/" + model.queue + ".def"))) {
      stored[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
    }
    Texts installed;
    for (const MakersFeature &feature : model.features) {
      const auto value = stored.find(feature.keyword);
      const std::string choice = value == stored.end() ? feature.usual : value->second;
      const std::string text = feature.TextOf(choice);
      if (feature.keyword == kMemoryKey) continue;
      if (feature.is_installable) {
        const std::string part = feature.PartOf(choice);
        if (!part.empty()) installed.push_back(Squeezed(part));
        continue;
      }
      const auto shown = model.shown.choices.find(feature.keyword);
      if (shown == model.shown.choices.end()) continue;
      if (Squeezed(shown->second) != Squeezed(text)) {
        Fault(model.file, feature.keyword + " is stored as " + choice + " (" + text +
                              ") and was shown as " + shown->second);
      }
    }
    std::sort(installed.begin(), installed.end());
    if (installed != model.shown.installed) {
      Fault(model.file, "installed is " + Listed(installed) + " and was shown as " +
                            Listed(model.shown.installed));
    }
  }

  void LookInTool(const std::vector<SampledModel> &models) {
    GuiApp app;
    app.WaitWindow("ToolWindow");
    for (const SampledModel &model : models) {
      ChooseQueue(app, model.queue);
      OpenProperties(app);
      EveryOption window(app, model.features, kToolTabs);
      window.TakePlaces(model.places);
      const ShownSettings shown = window.Read();
      for (const std::string &fault : window.Faults()) Fault(model.file, "tool: " + fault);
      const std::string difference = Difference(model.shown, shown);
      if (!difference.empty()) Fault(model.file, "the print tool shows " + difference);
      PressProperties(app, "Cancel");
      app.WaitGone("PropertiesWindow");
      if (!app.Stderr().empty()) Fault(model.file, "tool's stderr: " + app.Stderr());
      ++count_.tool_windows;
    }
  }

  SampledPpds sample_{4};
  Count count_;
  int faults_ = 0;
};

TEST_F(MakersWindows, EveryOptionIsShownSetAndStored) {
  const Texts files = sample_.Names();
  for (size_t from = 0; from < files.size(); from += kQueuesAStart) {
    const auto end = std::min(files.size(), from + kQueuesAStart);
    std::vector<SampledModel> models;
    AddModels({files.begin() + static_cast<long>(from), files.begin() + static_cast<long>(end)},
              models);
    Administer(models);
    for (const SampledModel &model : models) CompareStored(model);
    LookInTool(models);
    RemoveModels(models);
    std::printf("%zu of %zu\n", end, files.size());
    std::fflush(stdout);
  }
  std::printf("%d windows with %d features: %d set, %d conflicts; %d windows of the print tool\n",
              count_.windows, count_.features, count_.set, count_.conflicts, count_.tool_windows);
  EXPECT_EQ(faults_, 0);
  EXPECT_EQ(count_.windows, static_cast<int>(files.size()));
  EXPECT_EQ(count_.set, count_.features);
}

}  // namespace
