#include "booklet.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "conflicts.h"
#include "ppdconstraints.h"
#include "settingkeys.h"

namespace kpx::filter {

namespace {

constexpr size_t kPagesOfSheet = 4;
constexpr char kShortEdge[] = "DuplexTumble";

bool CanTurnOverShortEdge(const JobSettings &settings) {
  const PpdFeature *feature = settings.Model().FindFeature("Duplex");
  if (feature == nullptr || feature->FindChoice(kShortEdge) == nullptr) return false;
  const std::vector<OptionPair> pairs = ExpandConstraints(settings.Model()).pairs;
  return std::none_of(pairs.begin(), pairs.end(), [&settings](const OptionPair &pair) {
    return (pair.feature1 == kDuplexKey && pair.option1 == kShortEdge &&
            IsInForce(settings, pair.feature2, pair.option2)) ||
           (pair.feature2 == kDuplexKey && pair.option2 == kShortEdge &&
            IsInForce(settings, pair.feature1, pair.option1));
  });
}

}  // namespace

size_t SidesOfBooklet(size_t pages) { return (pages + kPagesOfSheet - 1) / kPagesOfSheet * 2; }

std::pair<std::optional<size_t>, std::optional<size_t>> PagesOfSide(size_t side, size_t pages) {
  const auto present = [pages](size_t page) {
    return page < pages ? std::optional(page) : std::nullopt;
  };
  const auto early = present(side);
  const auto late = present(2 * SidesOfBooklet(pages) - 1 - side);
  // The front of a sheet has its later page at the left, the back at the right.
  return side % 2 == 0 ? std::pair(late, early) : std::pair(early, late);
}

bool IsBooklet(const JobSettings &settings) { return settings.Other(kBookletKey) == "1"; }

JobSettings BookletSettings(const JobSettings &settings) {
  JobSettings result = settings;
  if (CanTurnOverShortEdge(settings)) result.Apply({{kDuplexKey, kShortEdge}});
  return result;
}

SideList SidesOf(const JobSettings &settings, size_t pages, size_t places) {
  const PpdChoice *sides = settings.Chosen(kDuplexKey + 1);
  const bool is_two_sided = sides != nullptr && sides->keyword.starts_with("Duplex");
  return SideList(settings.Pages(), {.pages = pages,
                                     .places = places,
                                     .is_booklet = IsBooklet(settings),
                                     .is_reversed = settings.Pages().is_reversed,
                                     .fills_sheets = is_two_sided});
}

PageStore::PageStore() {
  for (File *file : {&marks_, &offsets_, &definitions_}) {
    if (error_ != 0) return;
    file->reset(std::tmpfile());
    Check(*file != nullptr);
  }
}

void PageStore::Check(bool good) {
  if (!good && error_ == 0) error_ = errno != 0 ? errno : EIO;
}

void PageStore::BeginPage() {
  if (error_ != 0) return;
  Check(std::fwrite(&size_, sizeof size_, 1, offsets_.get()) == 1);
  ++pages_;
}

void PageStore::Write(std::string_view marks) {
  if (error_ != 0) return;
  Check(std::fwrite(marks.data(), 1, marks.size(), marks_.get()) == marks.size());
  size_ += marks.size();
}

void PageStore::Define(std::string_view definitions) {
  if (error_ != 0) return;
  const size_t size = definitions.size();
  Check(std::fwrite(definitions.data(), 1, size, definitions_.get()) == size);
  definitions_size_ += size;
}

void PageStore::Seek(std::FILE *file, uint64_t offset) {
  if (error_ == 0) Check(fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0);
}

uint64_t PageStore::OffsetOf(size_t page) {
  if (page >= pages_) return size_;
  uint64_t offset = 0;
  Seek(offsets_.get(), page * sizeof offset);
  if (error_ == 0) Check(std::fread(&offset, sizeof offset, 1, offsets_.get()) == 1);
  return offset;
}

long PageStore::ReadPage(size_t page, uint64_t offset, char *bytes, size_t size) {
  const uint64_t begin = OffsetOf(page) + offset, end = OffsetOf(page + 1);
  const auto count = static_cast<size_t>(std::min<uint64_t>(end - std::min(begin, end), size));
  if (error_ == 0 && count > 0) {
    Seek(marks_.get(), begin);
    if (error_ == 0) Check(std::fread(bytes, 1, count, marks_.get()) == count);
  }
  errno = error_;
  return error_ == 0 ? static_cast<long>(count) : -1;
}

void PageStore::CopyPage(size_t page, PageTarget *target) {
  target->BeginPage();
  const uint64_t begin = OffsetOf(page);
  const uint64_t size = OffsetOf(page + 1) - begin;
  if (heading_) target->Write(heading_(page));
  Seek(marks_.get(), begin);
  Copy(marks_.get(), size, [target](std::string_view marks) { target->Write(marks); });
  target->EndPage();
}

void PageStore::CopyDefinitions(JobSink *sink) {
  Seek(definitions_.get(), 0);
  Copy(definitions_.get(), definitions_size_,
       [sink](std::string_view definitions) { sink->Write(definitions); });
}

// Hands the next `size` bytes of a file on.
void PageStore::Copy(std::FILE *file, uint64_t size,
                     const std::function<void(std::string_view)> &take) {
  char buffer[8192];
  while (error_ == 0 && size > 0) {
    const size_t count = static_cast<size_t>(std::min<uint64_t>(size, sizeof buffer));
    Check(std::fread(buffer, 1, count, file) == count);
    if (error_ == 0) take({buffer, count});
    size -= count;
  }
}

}  // namespace kpx::filter
