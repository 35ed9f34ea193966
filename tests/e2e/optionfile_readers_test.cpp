// Readers of option files while the files are written: whoever opens one finds the whole text of
// one save or another, never a part of it. A save of all queues deletes the queues' files first, so
// a reader may find none between; a user's own file is there all the time.
#include <fcntl.h>

#include <atomic>
#include <future>
#include <set>

#include "administration.h"
#include "cprintqueues.h"
#include "deffile.h"
#include "descriptor.h"
#include "must.h"
#include "spoolerstandin.h"

using kpx::transport::Descriptor;

namespace {

using Texts = std::set<std::string>;

// Some 12 kilobytes: more than one read or write of a buffered stream.
Owned<CPrintQueue> QueueWithOptions(const std::string &name, const std::string &value) {
  Owned<CPrintQueue> queue = MakeQueue({.name = name});
  for (int i = 0; i < 400; ++i) {
    Must(HashPutText(queue->Options.get(), ("*Feature" + std::to_string(1000 + i)).c_str(),
                     (value + std::string(16, '.')).c_str()));
  }
  return queue;
}

std::string QueueFile(const std::string &name) { return std::string(kDataDir) + "/" + name; }

// Reads a file again and again until it is told to stop.
class Reader {
 public:
  explicit Reader(const std::string &path)
      : done_(std::async(std::launch::async, [this, path] { Read(path); })) {}
  ~Reader() { Stop(); }
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;

  void Stop() {
    stop_ = true;
    if (done_.valid()) done_.get();
  }
  // How often the file has been read so far.
  int found() const { return found_; }
  // After Stop: the different texts that were read, and how often there was no file.
  const Texts &texts() const { return texts_; }
  int missing() const { return missing_; }

 private:
  void Read(const std::string &path) {
    while (!stop_) {
      const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
      if (file) {
        texts_.insert(ReadToEnd(file.get()));
        ++found_;
      } else {
        ++missing_;
      }
    }
  }

  std::atomic<bool> stop_ = false;
  std::atomic<int> found_ = 0;
  Texts texts_;
  int missing_ = 0;
  std::future<void> done_;
};

// Runs `write` again and again with the numbers 0 and 1 in turn while `reader` reads.
template <class Write>
void WriteWhileReading(Reader &reader, const Write &write) {
  constexpr int kWrites = 300;
  constexpr int kReads = 500;
  for (int turn = 0; turn < kWrites || reader.found() < kReads; ++turn) write(turn % 2);
  reader.Stop();
}

class OptionFileReaders : public AdministrationTest {
 protected:
  // Says what was read besides the whole texts of the two queues.
  void ExpectWholeTexts(const Reader &reader, std::string (*text)(const CPrintQueue *)) const {
    EXPECT_LT(0, reader.found());
    for (const std::string &found : reader.texts()) {
      EXPECT_TRUE(found == text(queues_[0].get()) || found == text(queues_[1].get()))
          << found.size() << " characters: " << found.substr(0, 200);
    }
  }

  const Owned<CPrintQueue> queues_[2] = {QueueWithOptions("lp1", "one"),
                                         QueueWithOptions("lp1", "other")};
};

TEST_F(OptionFileReaders, NeverFindPartOfAQueuesFileNorNoneWhileItIsReplaced) {
  ASSERT_EQ(1, fWriteDefFile_Function(queues_[0].get(), 1));
  Reader reader(QueueFile("lp1.def"));
  WriteWhileReading(
      reader, [&](int which) { ASSERT_EQ(1, fWriteDefFile_Function(queues_[which].get(), 1)); });
  ExpectWholeTexts(reader, QueueDefFileText);
  EXPECT_EQ(0, reader.missing());
}

TEST_F(OptionFileReaders, NeverFindPartOfAUsersFileNorNoneWhileItIsReplaced) {
  ASSERT_EQ(1, fWriteDefFile_Function(queues_[0].get(), 0));
  Reader reader(UserDefFilePath("root:lp1.def"));
  WriteWhileReading(
      reader, [&](int which) { ASSERT_EQ(1, fWriteDefFile_Function(queues_[which].get(), 0)); });
  ExpectWholeTexts(reader, UserDefFileText);
  EXPECT_EQ(0, reader.missing());
}

TEST_F(OptionFileReaders, NeverFindPartOfAFileWhileAllQueuesAreWritten) {
  const Owned<CPrintQueues> collections[2] = {CreatePrintQueues(kQueuesFile),
                                              CreatePrintQueues(kQueuesFile)};
  for (int i = 0; i < 2; ++i) {
    collections[i]->queues = CreateHash();
    Must(HashPut(fGetPrintQueues_Function(collections[i].get()), "lp1", CloneOf(queues_[i].get())));
  }
  Reader reader(QueueFile("lp1.def"));
  WriteWhileReading(
      reader, [&](int which) { ASSERT_EQ(1, fWriteAllToDef_Function(collections[which].get())); });
  ExpectWholeTexts(reader, QueueDefFileText);
}

TEST_F(OptionFileReaders, NeverFindPartOfAFileWhileKPXadminSaves) {
  const SpoolerStandIn spooler;
  PutInSpooler("lp1", "#!/bin/sh\n" + std::string(kMarkerLine) + "\n");
  Reader reader(QueueFile("lp1.def"));
  for (int save = 0; save < 10; ++save) {
    const Owned<CHash> hash = CreateHash();
    Must(HashPut(hash.get(), "lp1", CloneOf(queues_[save % 2].get())));
    int left_out = 0;
    std::ofstream(kQueuesFile) << QueueListText(hash.get(), &left_out);
    AdminApp app;
    app.Click("SaveButton");
    EXPECT_EQ(0, app.WaitExit());
    EXPECT_EQ("", app.Stderr());
    EXPECT_EQ(QueueDefFileText(queues_[save % 2].get()), ContentOf(QueueFile("lp1.def")));
  }
  reader.Stop();
  ExpectWholeTexts(reader, QueueDefFileText);
}

}  // namespace
