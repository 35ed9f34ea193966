#include "sheets.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "decimal.h"
#include "featurecode.h"
#include "settingkeys.h"

namespace kpx::filter {

namespace {

struct Grid {
  size_t pages, columns, rows;  // of upright pages
  bool turned, ordered;
};

constexpr Grid kGrids[] = {{2, 2, 1, true, true},   {4, 2, 2, false, true},
                           {6, 3, 2, true, false},  {8, 4, 2, true, false},
                           {9, 3, 3, false, false}, {16, 4, 4, false, false}};

const Grid *GridFor(size_t pages) {
  const auto found = std::find_if(std::begin(kGrids), std::end(kGrids),
                                  [pages](const Grid &grid) { return grid.pages == pages; });
  return found == std::end(kGrids) ? nullptr : found;
}

struct Order {
  std::string_view name;
  bool from_right, columns_first, from_bottom;
};

// Those of the windows, and those of applications.
constexpr Order kOrders[] = {
    {"Left", false, false, false}, {"Right", true, false, false}, {"Down", false, true, false},
    {"Back", true, true, false},   {"lrtb", false, false, false}, {"rltb", true, false, false},
    {"tblr", false, true, false},  {"tbrl", true, true, false},   {"lrbt", false, false, true},
    {"rlbt", true, false, true},   {"btlr", false, true, true},   {"btrl", true, true, true}};
constexpr size_t kOrdersOfWindows = 4;

const Order *OrderFor(std::string_view name) {
  const auto *const found = std::find_if(std::begin(kOrders), std::end(kOrders),
                                         [name](const Order &order) { return order.name == name; });
  return found == std::end(kOrders) ? nullptr : found;
}

// The placement on the paper as it is fed, from that on the paper as it is read.
std::array<double, 6> OnPaper(const std::array<double, 6> &m, const SheetPlan &plan) {
  PageTurn turn = plan.turn;
  // Pages across a paper that is turned come out upright: the way back is the shorter one.
  if (plan.turned && turn != PageTurn::kNone) {
    turn = turn == PageTurn::kLeft ? PageTurn::kRight : PageTurn::kLeft;
  }
  switch (turn) {
    case PageTurn::kLeft:
      return {-m[1], m[0], -m[3], m[2], plan.length - m[5], m[4]};
    case PageTurn::kRight:
      return {m[1], -m[0], m[3], -m[2], m[5], plan.width - m[4]};
    case PageTurn::kNone:
      break;
  }
  return m;
}

}  // namespace

PageTurn TurnOf(const JobSettings &settings) {
  const PpdChoice *choice = settings.Chosen(kOrientationKey + 1);
  // Pages can be laid out so without an option of the printer.
  const std::string name = choice != nullptr ? choice->keyword : settings.Other(kOrientationKey);
  if (name == "Landscape") return PageTurn::kLeft;
  return name == "RotLandscape" ? PageTurn::kRight : PageTurn::kNone;
}

JobSettings UprightSettings(const JobSettings &settings) {
  JobSettings upright = settings;
  if (TurnOf(settings) != PageTurn::kNone) upright.Apply({{kOrientationKey, "Portrait"}});
  return upright;
}

PpdPageSize PageInHand(const JobSettings &settings, PageTurn turn) {
  const PpdPageSize p = PageInForce(settings);
  switch (turn) {
    case PageTurn::kLeft:
      return {p.length, p.width, p.bottom, p.width - p.right, p.top, p.width - p.left};
    case PageTurn::kRight:
      return {p.length, p.width, p.length - p.top, p.left, p.length - p.bottom, p.right};
    case PageTurn::kNone:
      break;
  }
  return p;
}

bool IsPagesPerSide(std::string_view pages) {
  return pages == "1" ||
         std::any_of(std::begin(kGrids), std::end(kGrids),
                     [pages](const Grid &grid) { return pages == std::to_string(grid.pages); });
}

bool IsPageOrder(std::string_view order) { return OrderFor(order) != nullptr; }

void WarnOfPageSettings(const JobSettings &settings, JobResult *result) {
  const std::string pages = settings.Other(kNupKey), order = settings.Other(kNupOrderKey);
  if (!pages.empty() && !IsPagesPerSide(pages)) {
    result->Warn("\"*Nup=" + pages +
                 "\" is not a number of pages per side (1, 2, 4, 6, 8, 9, 16): 1 is used");
  }
  if (!order.empty() && !IsPageOrder(order)) {
    result->Warn("\"*NupOrder=" + order +
                 "\" is not an order of pages (Left, Right, Down, Back): Left is used");
  }
}

SheetPlan PlanFor(const PpdPageSize &paper, size_t pages, std::string_view order) {
  SheetPlan plan;
  plan.width = paper.width;
  plan.length = paper.length;
  const double x = std::max({paper.left, paper.width - paper.right, 0.0});
  const double y = std::max({paper.bottom, paper.length - paper.top, 0.0});
  if (2 * x < paper.width) plan.inset_x = x;
  if (2 * y < paper.length) plan.inset_y = y;
  if (const Grid *grid = GridFor(pages)) {
    plan.columns = grid->columns;
    plan.rows = grid->rows;
    plan.turned = grid->turned;
    // Pages that lie stand above each other.
    if (grid->turned && paper.width > paper.length) std::swap(plan.columns, plan.rows);
  }
  if (const Order *known = OrderFor(order)) {
    plan.from_right = known->from_right;
    plan.columns_first = known->columns_first;
    plan.from_bottom = known->from_bottom;
  }
  return plan;
}

SheetPlan PlanOf(const JobSettings &settings, PageTurn turn) {
  const std::string pages = settings.Other(kNupKey), order = settings.Other(kNupOrderKey);
  const PpdPageSize paper = PageInHand(settings, turn);
  SheetPlan plan = PlanFor(paper, 1, "Left");
  const Order *known = OrderFor(order);
  const bool of_application = known != nullptr && known >= kOrders + kOrdersOfWindows;
  for (const Grid &grid : kGrids) {
    if (pages != std::to_string(grid.pages)) continue;
    plan = PlanFor(paper, grid.pages, grid.ordered || of_application ? order : "Left");
  }
  plan.turn = turn;
  if (plan.Places() == 1) plan.inset_x = plan.inset_y = 0;
  return plan;
}

SheetPlan BookletPlanOf(const JobSettings &settings, PageTurn turn) {
  SheetPlan plan = PlanFor(PageInHand(settings, turn), 2, "Left");
  plan.turn = turn;
  return plan;
}

namespace {

// A cell as the reader holds the sheet: its lower left corner and its size.
struct Cell {
  double x, y, width, length;
};

Cell CellInHand(const SheetPlan &plan, size_t place) {
  size_t column = plan.columns_first ? place / plan.rows : place % plan.columns;
  size_t row = plan.columns_first ? place % plan.rows : place / plan.columns;
  if (plan.from_right) column = plan.columns - 1 - column;
  if (plan.from_bottom) row = plan.rows - 1 - row;
  const double inset_x = plan.turned ? plan.inset_y : plan.inset_x;
  const double inset_y = plan.turned ? plan.inset_x : plan.inset_y;
  const double width = (plan.turned ? plan.length : plan.width) - 2 * inset_x;
  const double length = (plan.turned ? plan.width : plan.length) - 2 * inset_y;
  const double cell_width = width / static_cast<double>(plan.columns);
  const double cell_length = length / static_cast<double>(plan.rows);
  return {inset_x + cell_width * static_cast<double>(column),
          inset_y + cell_length * static_cast<double>(plan.rows - 1 - row), cell_width,
          cell_length};
}

std::array<double, 6> MatrixAt(const SheetPlan &plan, double scale, double x, double y) {
  if (!plan.turned) return OnPaper({scale, 0, 0, scale, x, y}, plan);
  return OnPaper({0, scale, -scale, 0, plan.width - y, x}, plan);
}

}  // namespace

SheetCell CellOf(const SheetPlan &plan, size_t place) {
  const Cell cell = CellInHand(plan, place);
  return {MatrixAt(plan, 1, cell.x, cell.y), cell.width, cell.length};
}

std::array<double, 6> PlacementOf(const SheetPlan &plan, size_t place) {
  const Cell cell = CellInHand(plan, place);
  // Rounded down as it will be written, so that a page never outgrows its cell.
  const double fit = std::min(cell.width / plan.width, cell.length / plan.length);
  const double scale = std::floor(fit * 1000) / 1000;
  return MatrixAt(plan, scale, cell.x + (cell.width - scale * plan.width) / 2,
                  cell.y + (cell.length - scale * plan.length) / 2);
}

void SheetWriter::BeginSide() {
  const std::string number = std::to_string(++sides_);
  sink_->Write("%%Page: " + number + " " + number + "\n");
  if (!page_setup_.empty()) {
    sink_->Write("%%BeginPageSetup\n" + page_setup_ + "%%EndPageSetup\n");
  }
  sink_->Write("/S save def F setfont\n");
}

void SheetWriter::BeginPage() {
  if (place_ == 0) BeginSide();
  if (!IsPlaced()) return;
  std::string code = "gsave [";
  for (const double number : PlacementOf(plan_, place_)) code += DecimalText(number) + " ";
  code.back() = ']';
  sink_->Write(code + " concat\n");
}

void SheetWriter::EndPage() {
  if (IsPlaced()) sink_->Write("grestore\n");
  if (++place_ == plan_.Places()) Finish();
}

void SheetWriter::SkipPlace() {
  if (place_ == 0) BeginSide();
  if (++place_ == plan_.Places()) Finish();
}

void SheetWriter::Finish() {
  if (place_ > 0) sink_->Write("showpage S restore\n");
  place_ = 0;
}

}  // namespace kpx::filter
