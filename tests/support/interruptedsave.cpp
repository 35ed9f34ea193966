#include "interruptedsave.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "adminsession.h"
#include "childprocess.h"
#include "coresupport.h"
#include "cprintqueue.h"
#include "globals.h"
#include "paths.h"
#include "privateworld.h"
#include "spooler.h"

namespace {

constexpr char kErrors[] = "/run/kpx/errors";
constexpr char kPrinter[] = "Vek Norvel 4110ES";
constexpr char kModel[] = "/usr/spool/lp/model/vek4110";  // the printer's interface script
constexpr unsigned kPatience = 120;  // seconds after which a start and a save hang

// Ends the process with the words of a failed step of the scenario.
void Must(bool done, const char *what) {
  if (done) return;
  std::fprintf(stderr, "%s\n", what);
  _exit(90);
}

size_t StartSession() {
  const Owned<CList> messages = CreateList();
  LoadQueues(messages.get());
  return Texts(messages.get()).size();
}

void SetOption(const char *queue, const char *key, const char *value) {
  CPrintQueue *record = HashValue<CPrintQueue>(G_Queues_hash, queue);
  Must(record != nullptr, queue);
  HashRemove(record->Options.get(), key);
  Must(HashPutText(record->Options.get(), key, value) == 1, "no option set");
}

void MakeFirstQueues() {
  Must(StartSession() == 0, "start");
  for (const char *name : {"qaddress", "qdeleted", "qkept", "qoptions"}) {
    Must(AddQueueToSession(name, "postscript", kPrinter, "10.0.0.1"), name);
    SetOption(name, "*PageSize", "A4");
  }
  Must(SaveSession() == 0, "save");
}

void ChangeQueues() {
  Must(AddQueueToSession("qnew", "text", kPrinter, "10.0.0.2"), "qnew");
  SetOption("qnew", "*Delivery", "HoldJobUntilYouEnterPIN");
  const CPrintQueue *moved = HashValue<CPrintQueue>(G_Queues_hash, "qaddress");
  Must(moved != nullptr, "qaddress");
  Must(fSet_Address_Function(const_cast<CPrintQueue *>(moved),
                             CreateStringWithValue("10.9.9.9").get()) == 1,
       "no address set");
  SetOption("qoptions", "*PageSize", "Letter");
  DeleteQueueInSession("qdeleted");
}

void PutUsersFile(const char *user, const char *queue) {
  const std::string path = std::string(kUsersDir) + "/" + user + ":" + queue + ".def";
  std::ofstream(path) << "*PageSize=A5\n";
  if (RunProgram({"chown", std::string(user) + ":lp", path}).status != 0) {
    throw std::runtime_error("no user " + std::string(user));
  }
}

// Runs a step in a process of its own that hangs at most so long.
void RunStep(const std::function<void()> &step) {
  const ChildResult result = RunInChild([&] {
    alarm(kPatience);
    step();
  });
  if (result.status != 0) {
    throw std::runtime_error("status " + std::to_string(result.status) + ": " + result.errors);
  }
}

bool SameThings(const World &one, const World &other, const std::string &queue) {
  const auto a = one.find(queue);
  const auto b = other.find(queue);
  if (a == one.end() || b == other.end()) return a == one.end() && b == other.end();
  return a->second == b->second;
}

}  // namespace

InterruptedSave::InterruptedSave() {
  RequirePrivateWorld();
  LoadCatalogues();
  RunStep(MakeFirstQueues);
  // The administrator's own doing, which no save may undo.
  if (RunProgram({"/usr/sbin/cupsdisable", "qkept"}).status != 0) throw std::runtime_error("qkept");
  PutUsersFile("anna", "qdeleted");
  PutUsersFile("bob", "qdeleted");
  PutUsersFile("anna", "qkept");
  disk_ = TakeDisk(SavePlaces());
  old_ = TakeWorld();
  if (StartAndSave() != 0) throw std::runtime_error("a save of nothing told an error");
  if (!Differences(TakeWorld(), old_).empty()) {
    throw std::runtime_error("a save of nothing changes\n" + Differences(TakeWorld(), old_));
  }
  scheduler_ = SchedulerState::Taken();
  const TracedEnd end = Save([](const FileCall &) { return CallFate{}; });
  if (end.status != 0) throw std::runtime_error("the save itself fails: " + Errors());
  new_ = TakeWorld();
}

const InterruptedSave &InterruptedSave::Shared() {
  static const InterruptedSave save;
  return save;
}

void InterruptedSave::PutBack() const {
  PutDisk(disk_, SavePlaces());
  scheduler_.PutBack();
}

TracedEnd InterruptedSave::Save(const FatePlan &plan) {
  const auto prepare = [] {
    alarm(kPatience);
    StartSession();
    ChangeQueues();
  };
  return RunTraced(
      prepare, [] { return SaveSession() == 0 ? 0 : 1; }, plan, kErrors);
}

TracedEnd InterruptedSave::Start(const FatePlan &plan, bool and_save) {
  const auto body = [=] {
    size_t told = StartSession();
    if (and_save) told += SaveSession();
    return told == 0 ? 0 : 1;
  };
  return RunTraced([] { alarm(kPatience); }, body, plan, kErrors);
}

int InterruptedSave::StartAndSave() {
  int told = 0;
  RunStep([&] {
    StartSession();
    if (SaveSession() != 0) std::ofstream(std::string(kErrors) + ".told") << "told";
  });
  if (std::filesystem::remove(std::string(kErrors) + ".told")) told = 1;
  return told;
}

SaveOutcome InterruptedSave::Judge() const { return Judge(TakeWorld()); }

SaveOutcome InterruptedSave::Judge(const World &world) const {
  const std::string from_old = Differences(world, old_);
  const std::string from_new = Differences(world, new_);
  World all = old_;
  all.insert(new_.begin(), new_.end());
  all.insert(world.begin(), world.end());
  const auto is_one_of_both = [&](const auto &queue) {
    return SameThings(world, old_, queue.first) || SameThings(world, new_, queue.first);
  };
  return {from_old.empty(), from_new.empty(), std::all_of(all.begin(), all.end(), is_one_of_both),
          from_old.size() < from_new.size() ? from_old : from_new};
}

std::string InterruptedSave::SpoiltFiles() const {
  std::string lines;
  for (const auto &[queue, things] : WorldOf(TakeDisk(SavePlaces()), {})) {
    for (const auto &[thing, value] : things) {
      const auto has = [&, &queue = queue, &thing = thing, &value = value](const World &world) {
        const auto found = world.find(queue);
        if (found == world.end()) return false;
        const auto kept = found->second.find(thing);
        return kept != found->second.end() && kept->second == value;
      };
      if (queue.empty() || has(old_) || has(new_)) continue;
      if (thing == "script" && value.ends_with("\n" + ContentOf(kModel))) continue;
      lines += queue;
      lines += " ";
      lines += thing + ": " + value.substr(0, 60) + "\n";
    }
  }
  return lines;
}

std::string InterruptedSave::Errors() { return ContentOf(kErrors); }

bool ChangesSavedState(const FileCall &call) {
  return call.changes && (IsBelow(call, SavePlaces()) || SendsToServer(call));
}

std::vector<std::string> CallsOfSave(const CallFilter &concerns) {
  std::vector<std::string> calls;
  InterruptedSave::Shared().PutBack();
  InterruptedSave::Save(Noting(concerns, calls));
  return calls;
}

std::vector<std::string> CallsOfStart(const CallFilter &concerns) {
  std::vector<std::string> calls;
  InterruptedSave::Start(Noting(concerns, calls), false);
  return calls;
}

std::vector<int> SampleOf(int count, int some, int some_long) {
  std::vector<int> numbers;
  const int wanted = std::min(count, std::getenv("KPX_LONG") != nullptr ? some_long : some);
  for (int i = 0; i < wanted; ++i) {
    numbers.push_back(wanted == 1 ? 1 : 1 + i * (count - 1) / (wanted - 1));
  }
  return numbers;
}

FatePlan At(int number, const CallFilter &concerns, CallFate fate) {
  const auto seen = std::make_shared<int>(0);
  return
      [=](const FileCall &call) { return concerns(call) && ++*seen == number ? fate : CallFate{}; };
}

FatePlan Noting(const CallFilter &concerns, std::vector<std::string> &calls) {
  return [&](const FileCall &call) {
    if (concerns(call)) calls.push_back(DescriptionOf(call));
    return CallFate{};
  };
}
