#include "printerstatus.h"

#include <charconv>

namespace kpx::transport {

namespace {

constexpr std::size_t kLongestLine = 256;
constexpr std::string_view kCode = "CODE=";
constexpr std::string_view kBlocks[] = {"@PJL USTATUS DEVICE", "@PJL INFO STATUS"};
constexpr char kEndOfBlock = '\f';

// Codes that mean the same, both ends included. Codes of other conditions mean nothing here.
struct Meaning {
  int first, last;
  std::string_view words;  // empty: all is well
};
constexpr Meaning kMeanings[] = {
    {10000, 10001, ""},                 // ready
    {10002, 10002, "offline"},          //
    {10006, 10006, "toner low"},        //
    {10023, 10024, ""},                 // printing
    {40010, 40010, "out of toner"},     // no cartridge
    {40019, 40019, "output bin full"},  //
    {40021, 40021, "door open"},        //
    {40022, 40022, "paper jam"},        //
    {40038, 40038, "toner low"},        //
    {40079, 40079, "offline"},          //
    {41000, 41999, "out of paper"},     // a paper source is to be filled
    {42000, 42999, "paper jam"},        //
    {44000, 44999, "paper jam"},        //
};

const Meaning *MeaningOf(int code) {
  for (const Meaning &meaning : kMeanings) {
    if (code >= meaning.first && code <= meaning.last) return &meaning;
  }
  return nullptr;
}

bool BeginsBlock(std::string_view line) {
  for (const std::string_view block : kBlocks) {
    if (line.starts_with(block)) return true;
  }
  return false;
}

}  // namespace

std::string PrinterStatus::TakeLine(std::string_view line) {
  if (BeginsBlock(line)) {
    in_block_ = true;
    return {};
  }
  if (!in_block_ || !line.starts_with(kCode)) return {};
  line.remove_prefix(kCode.size());
  int code = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), code);
  if (error != std::errc() || end != line.data() + line.size()) return {};
  const Meaning *meaning = MeaningOf(code);
  if (meaning == nullptr || meaning->words == condition_) return {};
  condition_ = meaning->words;
  return condition_.empty() ? "ready again" : condition_ + " (code " + std::to_string(code) + ")";
}

std::string PrinterStatus::Take(std::string_view bytes) {
  std::string words;
  for (const char byte : bytes) {
    if (byte != '\r' && byte != '\n' && byte != kEndOfBlock) {
      // What is longer is no status.
      if (line_.size() <= kLongestLine) line_ += byte;
      continue;
    }
    const std::string said = line_.size() <= kLongestLine ? TakeLine(line_) : std::string();
    if (!said.empty()) words = said;
    line_.clear();
    if (byte == kEndOfBlock) in_block_ = false;
  }
  return words;
}

}  // namespace kpx::transport
